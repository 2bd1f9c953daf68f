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

    // The pen of the line's code; a thin black one when it has none that the symbology knows.
    void SetPen(OGRFeature& feature, const LineRecord& line) const;
    // None where the symbology does not know the symbol, or its scale or rotation are no such thing.
    void SetSymbol(OGRFeature& feature, const Batch& batch, const PointRecord& point) const;
    // None where height or rotation are no such thing.
    void SetLabel(OGRFeature& feature, const char* text, const TextRecord& record) const;

  private:
    struct Pen {
        std::string style;
        std::string colour;  // #rrggbb
    };
    const Pen& PenOf(CodeNumber code) const;

    Pen plain;
    std::unordered_map<int, Pen> pens;
    std::unordered_map<int, double> symbolSizes;  // mm, by symbol code
};

// #rrggbb
std::string ColourText(uint32_t colour);

}  // namespace vemrado::gdal
