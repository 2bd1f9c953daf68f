// Cuts strokes at a box, so that nothing far outside a picture reaches the drawing library.

#pragma once

#include <functional>
#include <span>
#include <vector>

#include "geometry.h"

namespace vemrado::draw {

// Calls emit for every part of the stroke that lies inside the box, in order, with the length of the stroke
// before the part: there its dash pattern goes on. The span is valid during the call.
void ClipStroke(std::span<const Point> stroke, const Box& box,
                const std::function<void(std::span<const Point>, double lengthBefore)>& emit);

}  // namespace vemrado::draw
