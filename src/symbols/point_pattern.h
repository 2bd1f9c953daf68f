// The list of moves and strokes by which the host's drawing library takes a point symbol.

#pragma once

#include <cstdint>

#include "symbols/symbol_shapes.h"
#include "zrv320/zrv320.h"

namespace vemrado {

class CPointPattern {
  public:
    static constexpr int32_t elementCount = 1002;  // at most 1001 points and the end record

    // Forgets every point; the scale stays.
    void ClearPattern();
    // Coordinates in units of the shape file; code 0: move, 1: draw. A point at the place of the one before
    // is dropped, and so is what finds no room.
    void AddPoint(int32_t x, int32_t y, uint8_t code);
    // A lone point, and points that are all the same, become a stroke of one unit, so that they show.
    void AddPolyline(const CShapePoint* points, int32_t count);
    // Ends the list; in a full one the end record takes the last point's place.
    void Terminate();

    const PatternElement* Elements() const { return elements; }
    int32_t Count() const { return count; }

  private:
    PatternElement elements[elementCount] = {};
    double scale = 0.01;  // from units of the shape file to units of the pattern
    double lastX = 0.0;   // scaled
    double lastY = 0.0;
    int32_t count = 0;  // without the end record
};

// Adds a drawing, by its number from 1, moved by dx and dy. Nothing when there is no such drawing.
void DrawSymbol(CSymbolShapes& shapes, int32_t number, CPointPattern& pattern, int16_t dx, int16_t dy);

}  // namespace vemrado
