// The converter's library, which brings GDAL and is loaded when it is needed.

#pragma once

#include "convert/converter.h"
#include "convert/feature_layers.h"

namespace vemrado::tools {

// The entries of the library beside the program's other libraries, loaded at the first call. Throws Failure
// when it is not there.
decltype(&VkmConvert) LoadConverter();
decltype(&VkmVirtualFiles) LoadVirtualFiles();
decltype(&VkmWriteFeatures) LoadFeatureWriter();

}  // namespace vemrado::tools
