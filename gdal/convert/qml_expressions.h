// Expressions that QGIS works out for each feature of a converted map, made from the rules of the map's
// reading.

#pragma once

#include <string>

#include "symbology.h"

namespace vemrado::gdal {

// The U value in the field "rotation" as QGIS turns things.
std::string ClockwiseAngle(int axisOrientation);

// Metres on the ground of a length on paper, by the field "map_scale".
std::string OnGround(const std::string& millimetres);

// A symbol's size on the ground by its scale; 0, which is not drawn, where scale or rotation are no such
// thing.
std::string SymbolSize(const std::string& sizeOfScale1);

// Colour of the pen of the code in "pen_code", black without one.
std::string PenColour(const Symbology& symbology);

// Of texts, from "height", "d_value" and "f_value".
std::string TextIsDrawable(const std::string& groundPerMillimetre);
std::string TextAcross();
std::string TextUpright(bool mirrored);
std::string TextFamily();
std::string TextStyleName();

}  // namespace vemrado::gdal
