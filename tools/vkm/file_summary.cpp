#include "file_summary.h"

#include <algorithm>

namespace vemrado::tools {
namespace {

size_t TypeIndex(int type) {
    if (type == 0) return noTypeLetter;
    const auto* found = std::find(typeLetters.begin(), typeLetters.end(), static_cast<char>(type));
    return static_cast<size_t>(found - typeLetters.begin());
}

}  // namespace

CodeCounts LayerCounts::SortedElementCodes() const {
    CodeCounts codes(elementCodes.begin(), elementCodes.end());
    // Among numbers the longer one is the larger one.
    std::sort(codes.begin(), codes.end(), [](const auto& a, const auto& b) {
        return std::pair(a.first.size(), a.first) < std::pair(b.first.size(), b.first);
    });
    return codes;
}

void FileSummary::AddLine(const map::RawLine& line) {
    LayerCounts& layer = layers[line.layer];
    ++layer.lines;
    layer.elements += line.elements.size();
    // Most elements of a line have one code.
    std::string_view code;
    uint64_t* count = nullptr;
    for (const VkmElement& element : line.elements) {
        ++layer.types[TypeIndex(element.type)];
        if (*element.code != '\0') {
            if (code != element.code) count = &layer.elementCodes[element.code];
            code = element.code;
            ++*count;
        }
        if (element.symbolCode != 0) {
            ++layer.symbols;
            ++layer.symbolCodes[element.symbolCode];
        }
        AddPoint({element.x, element.y});
    }
}

void FileSummary::AddText(const map::RawText& text) {
    LayerCounts& layer = layers[text.layer];
    ++layer.texts;
    if (text.code != 0) ++layer.textCodes[text.code];
    AddPoint(text.point);
}

LayerCounts FileSummary::Total() const {
    LayerCounts total;
    for (const auto& [number, layer] : layers) {
        total.lines += layer.lines;
        total.elements += layer.elements;
        for (size_t i = 0; i < total.types.size(); ++i) total.types[i] += layer.types[i];
        total.texts += layer.texts;
        total.symbols += layer.symbols;
    }
    return total;
}

void FileSummary::AddPoint(map::Point point) {
    extents[0].Add(point.x);
    extents[1].Add(point.y);
}

}  // namespace vemrado::tools
