// Features that the command line makes itself, such as findings, in any format that GDAL writes.

#pragma once

#include <string>
#include <vector>

#include "convert/converter.h"

namespace vemrado::gdal {

struct FeatureLayer {
    std::string name;
    std::string geoJson;  // a collection with its reference system
    std::string qml;      // style for QGIS, which goes into a GeoPackage
};

}  // namespace vemrado::gdal

// One output for all layers, or one each, named after them, where the format holds one only. It appears whole
// or not at all.
extern "C" __attribute__((visibility("default"))) void VkmWriteFeatures(
    const std::vector<vemrado::gdal::FeatureLayer>& layers, const std::string& output,
    vemrado::gdal::ConvertResult& result);
