// What the symbology draws lines and symbols with, taken from the module once for each directory. Lengths are
// millimetres on paper.

#pragma once

#include <ogr_core.h>
#include <ogr_geometry.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vemrado::gdal {

struct LinePen {
    std::string name;     // of the code, often empty
    uint32_t colour = 0;  // red + green * 256 + blue * 65536
    double width = 0.0;
    std::vector<double> dashes;  // drawn, gap, drawn, gap, ...; empty: continuous
    bool visible = true;
};

struct PointSymbol {
    std::string name;
    std::vector<std::vector<OGRRawPoint>> strokes;  // around the point, y up
    double reach = 0.0;                             // of the strokes from the point, along an axis
};

struct Symbology {
    std::map<int, LinePen> pens;         // by the code of a line
    std::map<int, PointSymbol> symbols;  // by the code of a symbol; those with a drawing

    // The symbology in VKMSym of a directory, read at the first call for it in the process. Problems are
    // reported to GDAL as warnings then.
    static std::shared_ptr<const Symbology> Of(const std::string& dataDirectory);
};

}  // namespace vemrado::gdal
