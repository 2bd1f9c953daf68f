// What the header of a map says of it beyond what the module takes.

#pragma once

#include <cstdint>
#include <string>

#include "client/text_encoding.h"

namespace vemrado::gdal {

struct SheetHeader {
    std::string date;   // second field of the D record
    std::string title;  // the comments of the header, one a line, in UTF-8
};

// Empty where the file cannot be opened. Any file that virtualFiles opens.
SheetHeader ReadSheetHeader(const std::string& file, client::Encoding encoding);

// When the file, or the archive that it lies in, was changed: seconds since 1970; 0: not known.
int64_t LastChangeOf(const std::string& file);

}  // namespace vemrado::gdal
