#include "symbols/point_pattern.h"

#include <algorithm>

namespace vemrado {

namespace {

constexpr uint8_t codeMove = 0;
constexpr uint8_t codeDraw = 1;
constexpr uint8_t codeEnd = '@';

void ConvertPoints(const uint8_t* raw, CShapePoint* points, uint32_t count, int16_t dx, int16_t dy) {
    for (uint32_t i = 0; i < count; ++i, raw += 4) {
        points[i].x = static_cast<int16_t>(ReadWord(raw)) + dx;
        points[i].y = static_cast<int16_t>(ReadWord(raw + 2)) + dy;
    }
}

}  // namespace

void CPointPattern::ClearPattern() {
    std::fill(std::begin(elements), std::end(elements), PatternElement{});
    lastX = lastY = 0.0;
    count = 0;
}

void CPointPattern::AddPoint(int32_t x, int32_t y, uint8_t code) {
    if (count >= elementCount) return;
    const double scaledX = x * scale;
    const double scaledY = y * scale;
    if (count > 0 && scaledX == lastX && scaledY == lastY) return;
    elements[count] = count == 0 ? PatternElement{scaledX, scaledY, code}
                                 : PatternElement{scaledX - lastX, scaledY - lastY, code};
    lastX = scaledX;
    lastY = scaledY;
    ++count;
}

void CPointPattern::AddPolyline(const CShapePoint* points, int32_t pointCount) {
    if (pointCount < 1) return;
    const CShapePoint& first = points[0];
    AddPoint(first.x, first.y, codeMove);
    if (std::all_of(points, points + pointCount,
                    [&](const CShapePoint& point) { return point.x == first.x && point.y == first.y; })) {
        AddPoint(first.x + 1, first.y, codeDraw);
        return;
    }
    for (int32_t i = 1; i < pointCount; ++i) AddPoint(points[i].x, points[i].y, codeDraw);
}

void CPointPattern::Terminate() {
    elements[std::min(count, elementCount - 1)] = {0.0, 0.0, codeEnd};
}

void DrawSymbol(CSymbolShapes& shapes, int32_t number, CPointPattern& pattern, int16_t dx, int16_t dy) {
    if (number < 1 || number > shapes.count) return;
    CSymbolShape& drawing = shapes.records[number - 1];
    const uint32_t partSize = 2u * drawing.partCount;
    if (partSize == 0) return;
    ConvertPoints(drawing.parts + partSize, drawing.points, CountPoints(drawing.parts, drawing.partCount), dx,
                  dy);
    drawing.offsetX = dx;
    drawing.offsetY = dy;
    const CShapePoint* points = drawing.points;
    for (uint32_t i = 0; i < drawing.partCount; ++i) {
        const uint16_t word = ReadWord(drawing.parts + 2 * i);
        const int32_t count = word & partPointMask;
        if (word >> partKindShift != partKindNotDrawn) pattern.AddPolyline(points, count);
        points += count;
    }
}

}  // namespace vemrado
