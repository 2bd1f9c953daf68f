// Styles in the format of QGIS, so that a converted map opens looking like the map.

#pragma once

#include <string>

#include "symbology.h"

namespace vemrado::gdal {

// Style documents for the layers as the driver names them. Sizes on paper become sizes on the ground at the
// map scale, so that the drawing grows and shrinks as one.
std::string LinesQml(const Symbology& symbology, double mapScale);
std::string PointsQml(const Symbology& symbology, double mapScale);
std::string TextsQml();
std::string ParcelsQml(double mapScale);

}  // namespace vemrado::gdal
