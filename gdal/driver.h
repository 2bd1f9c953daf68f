// The driver: what GDAL knows of it before it opens a file.

#pragma once

#include <memory>
#include <string>
#include <vector>

namespace vemrado::gdal {

class VkmDataset;
struct OpenSettings;

// Registers the driver with GDAL; a second time does nothing.
void RegisterDriver();

// Reads open options, given as NAME=VALUE strings. False when a value cannot be used, which is reported to
// GDAL.
bool ReadOpenOptions(const char* const* options, OpenSettings& settings);

}  // namespace vemrado::gdal
