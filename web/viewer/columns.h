// The tables of a map as Arrow columns, batch by batch, by the C interface.

#pragma once

#include <string>

#include "vemrado/vkm.h"
#include "vemrado/vkm_arrow.h"

namespace vemrado::web {

class ColumnReader {
  public:
    // Throws std::runtime_error when the file cannot be opened or is no map.
    ColumnReader(const char* name, int file, double length, const vkm_options& options, vkm_table table);
    ColumnReader(const ColumnReader&) = delete;
    ColumnReader& operator=(const ColumnReader&) = delete;
    ~ColumnReader();

    const ArrowSchema* Schema() const { return &schema; }
    // Valid until the next call; null at the end. Throws std::runtime_error.
    const ArrowArray* Next();

  private:
    static void* OpenFile(void* self);
    static int64_t ReadFile(void* opened, void* destination, size_t length);
    static int64_t LengthOfFile(void* opened);
    static void CloseFile(void* opened);

    void Check(int errorNumber);

    int file;
    double length;
    ArrowArrayStream stream = {};
    ArrowSchema schema = {};
    ArrowArray batch = {};
};

}  // namespace vemrado::web
