// GDAL's virtual files (/vsicurl/, /vsizip/ and the others) as inputs of every command, where GDAL is there.

#pragma once

#include "framework/framework.h"

namespace vemrado::tools {

// Opens names that begin with /vsi by GDAL, which is loaded at the first of them; nothing where it is not
// there.
const FrameworkFileProvider& VirtualFileNames();

}  // namespace vemrado::tools
