// Tells VKM files from all others by their first bytes.

#pragma once

#include <string_view>

namespace vemrado::gdal {

// True when the start of a file is that of a VKM file: its first line that is not empty opens a record, every
// whole line is text, and a record of header or element has the numbers that belong to it. Such a record may
// be missing from the bytes (long comments) only when the file is named *.vkm.
bool LooksLikeVkm(std::string_view start, bool namedVkm);

}  // namespace vemrado::gdal
