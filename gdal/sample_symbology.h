// The symbology that is used unless the user names one.

#pragma once

#include <string>

namespace vemrado::gdal {

// The directory of the sample symbology that belongs to this library or plugin; empty when it is not
// installed.
std::string SampleSymbology();

}  // namespace vemrado::gdal
