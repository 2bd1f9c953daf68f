// The converter's library, which brings GDAL and is loaded when it is needed.

#pragma once

#include "convert/converter.h"

namespace vemrado::tools {

// The entry of the library beside the program's other libraries, loaded at the first call. Throws Failure
// when it is not there.
decltype(&VkmConvert) LoadConverter();

}  // namespace vemrado::tools
