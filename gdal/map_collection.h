// The maps that VKM:sheets/, VKM:archive.zip or VKM:index.gpkg stands for.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "summary.h"

namespace vemrado::gdal {

struct OpenSettings;

struct CollectedMap {
    std::string file;
    // What it holds, where an index has it as it is now and as it is read with these settings.
    std::optional<FileTotals> totals;
};

// Of a folder and the folders and archives in it, of an archive, or of an index that `vkm index` or
// `vkm convert` made. None when there is a problem, which is reported to GDAL.
std::vector<CollectedMap> MapsOf(const std::string& collection, const OpenSettings& settings);

}  // namespace vemrado::gdal
