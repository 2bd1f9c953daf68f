#include "drawing.h"

#include <cmath>

namespace generate {

namespace {

int32_t Hundredths(double value) {
    return static_cast<int32_t>(std::lround(value * 100));
}

// Full turns are taken off: 0 to 399.99.
int32_t GonHundredths(double gons) {
    return (Hundredths(gons) % 40000 + 40000) % 40000;
}

}  // namespace

void Drawing::Add(Layer layer, GridPoint at, char type, bool startsLine, int32_t code, double radius) {
    std::vector<DrawnElement>& elements = Of(layer).elements;
    if (type != 'P' && elements.back().at == at) return;  // too close for the decimals
    DrawnElement element;
    element.at = at;
    element.type = type;
    element.startsLine = startsLine;
    element.keys.code = code;
    element.keys.radiusHundredths = Hundredths(radius);
    elements.push_back(element);
}

void Drawing::AddPath(Layer layer, const Path& path, int32_t code, char type) {
    if (path.size() < 2) return;
    StartLine(layer, grid.Snap(path[0]), code);
    for (std::size_t i = 1; i < path.size(); ++i) Element(layer, grid.Snap(path[i]), code, type);
}

void Drawing::AddRing(Layer layer, const Ring& ring, int32_t code) {
    if (ring.size() < 3) return;
    AddPath(layer, ring, code);
    Element(layer, grid.Snap(ring[0]), code);
}

void Drawing::AddSymbol(Layer layer, Point at, int32_t symbol, double gons, double scale) {
    DrawnElement element;
    element.at = grid.Snap(at);
    element.type = 'P';
    element.startsLine = true;
    element.keys.symbol = symbol;
    element.keys.gonsHundredths = GonHundredths(gons);
    element.keys.scaleHundredths = Hundredths(scale);
    Of(layer).elements.push_back(element);
}

void Drawing::MarkLast(Layer layer, int32_t symbol, double gons) {
    ElementKeys& keys = Of(layer).elements.back().keys;
    keys.symbol = symbol;
    keys.gonsHundredths = GonHundredths(gons);
}

void Drawing::AddText(Layer layer, Point at, std::string_view text, int32_t code, double gons) {
    const double clearance = TextClearance(layer) * paper;
    for (const DrawnText& other : Of(layer).texts)
        if (Length(grid.ToMetres(other.at) - at) < clearance) return;
    DrawnText drawn;
    drawn.at = grid.Snap(at);
    drawn.text = text;
    drawn.code = code;
    drawn.gonsHundredths = GonHundredths(gons);
    Of(layer).texts.push_back(std::move(drawn));
}

}  // namespace generate
