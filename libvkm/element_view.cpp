#include <algorithm>
#include <type_traits>

#include "reader.h"

namespace vemrado::capi {
namespace {

static_assert(sizeof(map::Point) == 2 * sizeof(double));
static_assert(std::is_same_v<int, int32_t>);

// Memory for the strokes of one line is kept up to this many; a longer line's goes with it.
constexpr size_t keptStrokes = 65536;

int32_t FaceBits(const map::Face& face) {
    return (face.serif ? 1 : 0) + (face.bold ? 2 : 0) + (face.italic ? 4 : 0);
}

}  // namespace

ElementView::ElementView(bool split) : splitByCode(split) {
    shownLine.kind = VKM_LINE;
    shownText.kind = VKM_TEXT;
    shownText.point_count = 1;
}

const vkm_element* ElementView::Line(const map::MapLine& line) {
    vkm_element& element = shownLine;
    element.layer = line.layer;
    element.layer_name = line.layerName.data();
    element.file_line = static_cast<uint64_t>(line.fileLine);
    element.point_count = line.points.size();
    if (line.points.empty()) [[unlikely]] {
        ShowNoElements();
    } else {
        ShowElements(line);
    }
    return &element;
}

void ElementView::ShowElements(const map::MapLine& line) {
    vkm_element& element = shownLine;
    element.points = &line.points[0].x;
    element.types = line.types.data();
    element.codes = line.codes.data();
    element.code_numbers = line.codeNumbers.data();
    element.pen_codes = line.penCodes.data();
    element.symbols = line.symbolCodes.data();
    element.m_values = line.valuesM.data();
    element.r_values = line.valuesR.data();
    element.u_values = line.valuesU.data();
    ShowStrokes(splitByCode ? line.strokes : line.wholeStrokes);
}

void ElementView::ShowStrokes(std::span<const map::Stroke> from) {
    shownLine.stroke_count = from.size();
    if (from.size() == 1) [[likely]] {
        oneStroke = {from[0].first, from[0].count, from[0].code.number};
        shownLine.strokes = &oneStroke;
        return;
    }
    if (strokes.size() < from.size() || strokes.size() > std::max(from.size(), keptStrokes)) [[unlikely]]
        std::vector<vkm_stroke>(from.size()).swap(strokes);
    for (size_t i = 0; i < from.size(); ++i) strokes[i] = {from[i].first, from[i].count, from[i].code.number};
    shownLine.strokes = from.empty() ? nullptr : strokes.data();
}

// Arrays without an entry are null.
void ElementView::ShowNoElements() {
    shownLine.points = nullptr;
    shownLine.types = nullptr;
    shownLine.codes = nullptr;
    shownLine.code_numbers = shownLine.pen_codes = shownLine.symbols = nullptr;
    shownLine.m_values = shownLine.r_values = shownLine.u_values = nullptr;
    shownLine.strokes = nullptr;
    shownLine.stroke_count = 0;
}

const vkm_element* ElementView::Text(const map::MapText& text) {
    vkm_element& element = shownText;
    element.layer = text.layer;
    element.layer_name = text.layerName.data();
    element.file_line = static_cast<uint64_t>(text.fileLine);
    element.points = &text.point.x;
    element.text = text.text.data();
    element.text_length = text.text.size();
    element.code = text.code;
    element.d_value = text.valueD;
    element.f_value = text.valueF;
    element.height = text.height;
    element.rotation = text.valueU;
    element.anchor = text.anchor.Key();
    element.face = FaceBits(text.face);
    return &element;
}

}  // namespace vemrado::capi
