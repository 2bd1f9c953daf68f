// Styles in the format of QGIS, so that a converted map opens looking like the map.

#pragma once

#include <string>

#include "symbology.h"

namespace vemrado::gdal {

// How a map is drawn.
struct MapLook {
    const Symbology& symbology;
    double mapScale = 1000.0;
    bool scaleOfFeatures = false;  // each has its own in the field map_scale
    int axisOrientation = 128;
};

// Style documents for the layers as the driver names them. Sizes on paper become sizes on the ground at the
// map scale, so that the drawing grows and shrinks as one.
std::string LinesQml(const MapLook& look);
std::string PointsQml(const MapLook& look);
std::string TextsQml(const MapLook& look);
std::string ParcelsQml(const MapLook& look);

}  // namespace vemrado::gdal
