// Columns in memory as the Arrow C data interface hands them over: each column fills its buffers row by row
// and then gives them away.

#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "map/geometry.h"
#include "vemrado/vkm_arrow.h"

namespace vemrado::map {

// Bytes that grow.
class ArrowBuffer {
  public:
    template <typename Value>
    void Push(Value value) {
        std::memcpy(Grow(sizeof value), &value, sizeof value);
    }
    void Append(const void* from, size_t count) {
        if (count != 0) std::memcpy(Grow(count), from, count);
    }
    uint8_t& Last() { return bytes.get()[used - 1]; }
    size_t Size() const { return used; }
    // Never null, as consumers like it.
    const void* Data() const { return bytes ? static_cast<const void*>(bytes.get()) : &nothing; }

  private:
    struct Free {
        void operator()(uint8_t* block) const { std::free(block); }
    };

    uint8_t* Grow(size_t count) {
        if (room - used < count) [[unlikely]]
            MakeRoom(count);
        used += count;
        return bytes.get() + used - count;
    }
    void MakeRoom(size_t count);

    static constexpr int64_t nothing = 0;
    std::unique_ptr<uint8_t, Free> bytes;
    size_t used = 0;
    size_t room = 0;
};

// What a column is. The format is one of Arrow's: i, l, g, u, +l, +w:2 and +s.
struct ColumnType {
    std::string name;
    std::string format;
    bool nullable = false;
    std::vector<ColumnType> children = {};
    std::vector<std::pair<std::string, std::string>> metadata = {};
};

// Fills a schema of the consumer's.
void ExportSchema(const ColumnType& type, ArrowSchema* schema);

class ArrowColumn {
  public:
    explicit ArrowColumn(const ColumnType& columnType);

    // A row of a column of that type.
    void Add(int32_t value) { AddFixed(value); }
    void Add(int64_t value) { AddFixed(value); }
    void Add(double value) { AddFixed(value); }
    void Add(std::string_view text) {
        data.Append(text.data(), text.size());
        offsets.Push(Offset(data.Size()));
        EndRow(true);
    }
    void AddNull();

    // Rows of points (+w:2 of doubles).
    void AddPoints(std::span<const Point> points);

    // The rows added to the child since the last list become one (+l).
    ArrowColumn& Items() { return children[0]; }
    void EndList() {
        offsets.Push(Offset(static_cast<size_t>(children[0].rows)));
        EndRow(true);
    }

    // The columns of a struct, to each of which a row has been added (+s).
    ArrowColumn& Field(size_t place) { return children[place]; }
    void EndStruct() { EndRow(true); }

    int64_t Rows() const { return rows; }

    // Moves the rows into an array of the consumer's; the column is empty then.
    void Export(ArrowArray* array);

  private:
    template <typename Value>
    void AddFixed(Value value) {
        data.Push(value);
        EndRow(true);
    }
    void EndRow(bool valid) {
        if (nullable) {
            if (rows % 8 == 0) validity.Push(uint8_t{0});
            validity.Last() = static_cast<uint8_t>(validity.Last() | (valid ? 1 : 0) << (rows % 8));
            if (!valid) ++nulls;
        }
        ++rows;
    }
    // Offsets have 32 bits. Throws std::length_error.
    static int32_t Offset(size_t place) {
        if (place > INT32_MAX) [[unlikely]]
            RefuseOffset();
        return static_cast<int32_t>(place);
    }
    [[noreturn]] static void RefuseOffset();

    struct Exported;
    static void Release(ArrowArray* array);

    ColumnType type;
    bool nullable;
    bool withOffsets;
    size_t width;  // of a fixed value, bytes
    int64_t rows = 0;
    int64_t nulls = 0;
    ArrowBuffer validity;
    ArrowBuffer offsets;
    ArrowBuffer data;
    std::vector<ArrowColumn> children;
};

}  // namespace vemrado::map
