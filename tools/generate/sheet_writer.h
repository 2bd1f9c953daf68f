// The text of a map file, piece by piece: its header, its sheets and its closing record.

#pragma once

#include <cstdint>
#include <string>

#include "country.h"
#include "names.h"
#include "options.h"

namespace generate {

class MapWriter {
  public:
    explicit MapWriter(const Options& wanted);

    // Number of sheets that the country has.
    int64_t SheetLimit() const;

    // These may be called from several threads at the same time.
    std::string Header() const;
    std::string Sheet(int64_t sheet) const;
    std::string Closing() const;

  private:
    struct Origin {
        int64_t y;
        int64_t x;
    };
    RecordWriter WriterOf(int64_t sheet) const;
    Origin OriginOf(int64_t sheet) const;
    std::string OffsetFields(Origin origin) const;
    std::string MapSheet(int64_t sheet) const;
    std::string PlainLines(int64_t sheet) const;

    const Options options;
    const Country country;
    const Names names;
    const int decimals;
    const Grid grid;
};

}  // namespace generate
