// What is on one sheet, layer by layer, ready to be written: lines of elements with their keys, and texts.

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "boundary_net.h"
#include "codes.h"
#include "geometry.h"

namespace generate {

// Keys of a line element; a value that equals its default is not written.
struct ElementKeys {
    int32_t code = 0;               // K
    int32_t symbol = 0;             // S
    int32_t scaleHundredths = 100;  // M
    int32_t gonsHundredths = 0;     // U
    int32_t radiusHundredths = 0;   // R, metres
};

struct DrawnElement {
    GridPoint at;
    char type = 'L';
    bool startsLine = false;
    ElementKeys keys;
};

struct DrawnText {
    GridPoint at;
    std::string text;            // Windows-1250
    int32_t code = 0;            // K, 0: left to the layer's default
    int32_t heightTenths = 0;    // H in tenths of a millimetre on paper, 0: left to the default
    int32_t font = 0;            // F, 0: left to the default
    int32_t anchor = 5;          // D: 5, the middle of the text stands on its point
    int32_t gonsHundredths = 0;  // U
};

struct DrawnLayer {
    std::vector<DrawnElement> elements;
    std::vector<DrawnText> texts;
};

class Drawing {
  public:
    // millimetre: metres on the ground for one on paper.
    Drawing(Grid coordinates, double millimetre) : grid(coordinates), paper(millimetre) {
        for (DrawnLayer& layer : layers) layer.elements.reserve(1024);
    }

    const Grid& GridOf() const { return grid; }
    const DrawnLayer& At(int layer) const { return layers[static_cast<std::size_t>(layer)]; }

    // Starts a line at a point; Stroke starts another stroke of the same line, Element goes on to a point.
    void StartLine(Layer layer, GridPoint at, int32_t code) { Add(layer, at, 'P', true, code, 0); }
    void Stroke(Layer layer, GridPoint at, int32_t code) { Add(layer, at, 'P', false, code, 0); }
    void Element(Layer layer, GridPoint at, int32_t code, char type = 'L', double radius = 0) {
        Add(layer, at, type, false, code, radius);
    }

    void AddPath(Layer layer, const Path& path, int32_t code, char type = 'L');
    void AddRing(Layer layer, const Ring& ring, int32_t code);
    void AddSymbol(Layer layer, Point at, int32_t symbol, double gons = 0, double scale = 1);
    // Gives the last element's point a symbol too.
    void MarkLast(Layer layer, int32_t symbol, double gons);
    // A text that would cover another one of its layer is left out.
    void AddText(Layer layer, Point at, std::string_view text, int32_t code, double gons);
    // How far texts of a layer keep from each other, in millimetres on paper: more than a quarter of the
    // largest one's height aside and upwards.
    static constexpr double TextClearance(Layer layer) { return layer == layerNames ? 3.1 : 0.62; }

  private:
    DrawnLayer& Of(Layer layer) { return layers[static_cast<std::size_t>(layer)]; }
    void Add(Layer layer, GridPoint at, char type, bool startsLine, int32_t code, double radius);

    Grid grid;
    double paper;
    std::array<DrawnLayer, layerCount + 1> layers;
};

}  // namespace generate
