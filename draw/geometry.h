// Points and boxes of drawings: those of the map.

#pragma once

#include "map/geometry.h"

namespace vemrado::draw {

using map::Box;
using map::Point;

}  // namespace vemrado::draw
