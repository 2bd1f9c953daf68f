#include <algorithm>

#include "reader.h"

namespace vemrado::capi {
namespace {

// Memory for the points of one line is kept up to this many; a longer line's goes with it.
constexpr size_t keptPoints = 65536;

int32_t FaceBits(const map::Face& face) {
    return (face.serif ? 1 : 0) + (face.bold ? 2 : 0) + (face.italic ? 4 : 0);
}

}  // namespace

void ElementArrays::Resize(size_t count) {
    if (room >= count && (room <= keptPoints || count > keptPoints)) return;
    room = std::max(count, std::min(2 * room, keptPoints));
    const auto make = [&](auto& values, size_t size) {
        std::remove_reference_t<decltype(values)>(size).swap(values);
    };
    make(types, room + 1);
    make(codes, room);
    make(codeNumbers, room);
    make(penCodes, room);
    make(symbols, room);
    make(mValues, room);
    make(rValues, room);
    make(uValues, room);
}

const vkm_element* ElementArrays::Line(const map::MapLine& line) {
    const size_t count = line.points.size();
    Resize(count);
    int32_t held = 0;
    for (size_t i = 0; i < count; ++i) {
        const VkmElement& from = line.elements[i];
        const map::Code& code = line.codes[i];
        types[i] = map::TypeLetter(from);
        codes[i] = code.Given() ? code.text.data() : "";  // ends with a zero, as the reading's texts do
        codeNumbers[i] = code.number;
        if (code.Given()) held = code.number;
        penCodes[i] = held;
        symbols[i] = from.symbolCode;
        mValues[i] = from.valueM;
        rValues[i] = from.valueR;
        uValues[i] = from.valueU;
    }
    types[count] = '\0';
    strokes.clear();
    for (const map::Stroke& stroke : splitByCode ? line.strokes : line.wholeStrokes)
        strokes.push_back({stroke.first, stroke.count, stroke.code.number});

    element = {};
    element.kind = VKM_LINE;
    element.layer = line.layer;
    element.layer_name = line.layerName.data();
    element.file_line = static_cast<uint64_t>(line.fileLine);
    element.point_count = count;
    if (count == 0) return &element;
    static_assert(sizeof(map::Point) == 2 * sizeof(double));
    element.points = &line.points[0].x;
    element.types = types.data();
    element.codes = codes.data();
    element.code_numbers = codeNumbers.data();
    element.pen_codes = penCodes.data();
    element.symbols = symbols.data();
    element.m_values = mValues.data();
    element.r_values = rValues.data();
    element.u_values = uValues.data();
    element.strokes = strokes.empty() ? nullptr : strokes.data();
    element.stroke_count = strokes.size();
    return &element;
}

const vkm_element* ElementArrays::Text(const map::MapText& text) {
    element = {};
    element.kind = VKM_TEXT;
    element.layer = text.layer;
    element.layer_name = text.layerName.data();
    element.file_line = static_cast<uint64_t>(text.fileLine);
    element.point_count = 1;
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
