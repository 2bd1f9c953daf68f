// What tables in PostgreSQL have beside their rows: comments, and styles as QGIS looks for them.

#pragma once

#include <string>
#include <vector>

#include "layer_styles.h"
#include "output_layers.h"

namespace vemrado::gdal {

// Comments on the new tables and their columns. False: reported to GDAL, as below.
bool DescribeTables(OutputLayers& output);

// A default style for each layer in public.layer_styles, which is made where there is none.
bool AddPostgisStyles(OutputLayers& output, const LayerStyles& styles, const std::string& schema,
                      const std::vector<OGRLayer*>& layers);

}  // namespace vemrado::gdal
