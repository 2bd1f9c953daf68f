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

template <typename Value>
const Value* Array(std::span<const Value> values) {
    return values.empty() ? nullptr : values.data();
}

}  // namespace

ElementView::ElementView(bool split) : splitByCode(split) {
    shownLine.kind = VKM_LINE;
    shownText.kind = VKM_TEXT;
    shownText.point_count = 1;
}

const vkm_element* ElementView::Line(const map::MapLine& line) {
    const std::span<const map::Stroke> from = splitByCode ? line.strokes : line.wholeStrokes;
    if (strokes.size() < from.size() || strokes.size() > std::max(from.size(), keptStrokes)) [[unlikely]]
        std::vector<vkm_stroke>(from.size()).swap(strokes);
    for (size_t i = 0; i < from.size(); ++i) strokes[i] = {from[i].first, from[i].count, from[i].code.number};

    vkm_element& element = shownLine;
    element.layer = line.layer;
    element.layer_name = line.layerName.data();
    element.file_line = static_cast<uint64_t>(line.fileLine);
    element.point_count = line.points.size();
    element.points = line.points.empty() ? nullptr : &line.points[0].x;
    element.types = Array(line.types);
    element.codes = Array(line.codes);
    element.code_numbers = Array(line.codeNumbers);
    element.pen_codes = Array(line.penCodes);
    element.symbols = Array(line.symbolCodes);
    element.m_values = Array(line.valuesM);
    element.r_values = Array(line.valuesR);
    element.u_values = Array(line.valuesU);
    element.strokes = from.empty() ? nullptr : strokes.data();
    element.stroke_count = from.size();
    return &element;
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
