// When files were changed.

#pragma once

#include <cstdint>
#include <string>

namespace vemrado::gdal {

// When the file, or the archive that it lies in, was changed: seconds since 1970; 0: not known. Any file that
// virtualFiles opens.
int64_t LastChangeOf(const std::string& file);

}  // namespace vemrado::gdal
