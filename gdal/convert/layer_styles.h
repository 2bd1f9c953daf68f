// The styles of the layers, where QGIS looks for them.

#pragma once

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qml_style.h"
#include "symbology.h"

namespace vemrado::gdal {

// Adds a default style for a layer to the table layer_styles of a GeoPackage, which is made when it is not
// there. False when it cannot be written, which is reported to GDAL.
bool AddStyle(GDALDataset& geoPackage, OGRLayer& layer, const std::string& qml, const char* description);

class LayerStyles {
  public:
    // scaleOfFeatures: lengths follow the field map_scale, and mapScale where there is none.
    LayerStyles(const std::string& dataDirectory, double mapScale, bool scaleOfFeatures, int axisOrientation);

    // The same from what was made last. One thread at a time.
    static std::shared_ptr<const LayerStyles> Of(const std::string& dataDirectory, double mapScale,
                                                 bool scaleOfFeatures, int axisOrientation);

    // The style document of a layer of that name.
    const std::string& QmlOf(const std::string& layer) const;
    // Adds the table layer_styles to a GeoPackage, or to the one that is there, with a default style for each
    // layer. False when the table cannot be written, which is reported to GDAL.
    bool AddTo(GDALDataset& geoPackage, const std::vector<OGRLayer*>& layers) const;

  private:
    std::shared_ptr<const Symbology> symbology;
    MapLook look;
    mutable std::map<std::string, std::string> documents;  // made so far
};

}  // namespace vemrado::gdal
