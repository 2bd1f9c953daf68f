// OGR style strings of the features, from the symbology.

#pragma once

#include <ogr_feature.h>

#include <memory>
#include <string>
#include <unordered_map>

#include "elements.h"
#include "symbology.h"

namespace vemrado::gdal {

class Styles {
  public:
    explicit Styles(const Symbology& symbology);

    // The pen of the line's first code; a thin black one when it has none that the symbology knows.
    void SetPen(OGRFeature& feature, const Batch& batch, const LineRecord& line) const;
    void SetSymbol(OGRFeature& feature, const Batch& batch, const PointRecord& point) const;
    void SetLabel(OGRFeature& feature, const char* text, const TextRecord& record) const;

  private:
    struct Pen {
        std::string style;
        std::string colour;  // #rrggbb
    };
    const Pen& PenOf(const char* code) const;

    Pen plain;
    std::unordered_map<int, Pen> pens;
    std::unordered_map<int, double> symbolSizes;  // mm, by symbol code
};

// Degrees counter-clockwise of a rotation in a file, which is in gons.
inline double Degrees(double rotation) {
    return rotation * 0.9;
}

// The corner or side of a text that stands on its point, 1 to 9 as on a numeric keypad, from its D value.
inline int TextAnchor(int valueD) {
    return valueD >= 1 && valueD <= 9 ? valueD : 2;
}

// How a text looks, from its F value.
struct TextFace {
    bool serif;
    bool bold;
    bool italic;
};
TextFace FaceOf(int valueF);

// #rrggbb
std::string ColourText(uint32_t colour);

}  // namespace vemrado::gdal
