#include "map/map_state.h"

#include <cmath>

namespace vemrado::map {
namespace {

bool IsPlace(Point point) {
    constexpr double farthest = 1e9;  // m
    return std::abs(point.x) <= farthest && std::abs(point.y) <= farthest;
}

}  // namespace

// Strokes as "Lines and their elements" of docs/vkm-format.md has them: type P begins one, and a code holds
// until the next one in the line. An element without a letter has no point of its own: its keys belong to the
// one before it.
void MapState::Line(std::span<const CheckedVertex> elements, const CheckedLayer& layer) {
    pen.layer = layer.number;
    pen.code.clear();
    size_t begin = vertices.size();
    size_t symbolsBefore = symbols.size();
    bool begins = true;
    for (const CheckedVertex& element : elements) {
        if (!element.code.empty()) pen.code = element.code;
        if (element.type == 0) {
            if (vertices.size() == begin) continue;
            if (!element.code.empty()) vertices.back().pen = values.pens.NumberOf(pen);
            if (element.symbolCode != 0) AddSymbol(element, vertices.back().point, layer.number);
            continue;
        }
        if (!IsPlace(element.point)) {
            begins = true;
            continue;
        }
        if (begins || element.type == 'P') {
            EndStroke(begin, symbolsBefore);
            begin = vertices.size();
            symbolsBefore = symbols.size();
            begins = true;
        }
        vertices.push_back(
            {element.point, static_cast<uint32_t>(element.place.line), values.pens.NumberOf(pen), begins});
        if (element.symbolCode != 0) AddSymbol(element, element.point, layer.number);
        begins = false;
    }
    EndStroke(begin, symbolsBefore);
}

// The code of a symbol that stands alone is told with it; elsewhere it is that of a segment. A point alone
// shows nothing.
void MapState::EndStroke(size_t begin, size_t symbolsBefore) {
    if (vertices.size() != begin + 1) return;
    for (size_t i = symbolsBefore; i < symbols.size(); ++i) {
        Sign sign = values.signs[symbols[i].sign];
        sign.code = values.pens[vertices.back().pen].code;
        symbols[i].sign = values.signs.NumberOf(sign);
    }
}

void MapState::AddSymbol(const CheckedVertex& element, Point place, int layer) {
    const Sign sign = {layer, element.symbolCode, element.valueM, element.valueU, {}};
    symbols.push_back({place, static_cast<uint32_t>(element.place.line), values.signs.NumberOf(sign)});
}

void MapState::Text(const CheckedText& text, const CheckedLayer& layer) {
    texts.push_back({text.point, text.valueH, text.valueU, words.size(),
                     static_cast<uint32_t>(text.text.size()), static_cast<uint32_t>(text.place.line),
                     layer.number, text.code, text.valueD, text.valueF});
    words += text.text;
}

}  // namespace vemrado::map
