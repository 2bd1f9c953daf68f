// Lines as thin as a screen shows them, for maps seen from so far that nothing has a width of its own.

#pragma once

#include <cstdint>
#include <vector>

#include "draw/geometry.h"

namespace vemrado::web {

// Red, green, blue and opacity of each pixel, from the upper left.
class Pixels {
  public:
    // White.
    Pixels(int width, int height);

    void Line(draw::Point from, draw::Point to, uint32_t colour);

    const uint32_t* Data() const { return values.data(); }

  private:
    // Of a line that is flatter than 45 degrees in the directions along and across.
    template <bool steep>
    void FlatLine(draw::Point from, draw::Point to, uint32_t colour);
    void Blend(int x, int y, uint32_t colour, double cover);

    int width;
    int height;
    std::vector<uint32_t> values;
};

}  // namespace vemrado::web
