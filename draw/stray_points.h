// Points so far from the rest of a map that they are hardly meant: one wrong coordinate makes a picture of
// nothing.

#pragma once

#include <cstdint>
#include <optional>

#include "scene.h"

namespace vemrado::draw {

struct StrayPoints {
    uint64_t count = 0;
    Point farthest;
    double distance = 0;  // m; of the farthest from the box of the rest
    Box rest;             // of all others
};

// None when the points lie together, as those of a map do, or half the map would be stray.
std::optional<StrayPoints> FindStrayPoints(const Scene& scene);

}  // namespace vemrado::draw
