// The styles of a GeoPackage's layers, where QGIS looks for them.

#pragma once

#include <vector>

#include "vkm_dataset.h"

namespace vemrado::gdal {

// Adds the table layer_styles with a default style for each layer. Nothing when the map has no symbology.
// False when the table cannot be written, which is reported to GDAL.
bool AddLayerStyles(GDALDataset& output, VkmDataset& map, const std::vector<OGRLayer*>& layers);

}  // namespace vemrado::gdal
