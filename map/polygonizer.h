// What a net of boundaries encloses: areas with their holes.
//
// A piece with a free end bounds nothing, nor does one that joins two others with the same area on both
// sides; both are kept apart. An area inside another is a hole in it. Areas do not overlap.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "map/boundary_net.h"

namespace vemrado::map {

// A closed ring; its last point is its first one.
using Ring = std::vector<Point>;

struct Area {
    std::vector<Ring> rings;  // the outer one, counter-clockwise, then the holes, clockwise
    Box bounds;
    double size = 0;                   // m2, without the holes
    std::vector<uint32_t> sources;     // where its boundaries come from, ascending
    std::vector<uint32_t> neighbours;  // numbers of the areas on the other side of its boundaries, ascending

    // Whether a point lies inside: not in a hole. For a point on the boundary either answer may come.
    bool Holds(Point point) const;
};

struct EnclosedAreas {
    std::vector<Area> areas;      // in the order of the net
    std::vector<Point> freeEnds;  // of boundaries, in the order of the net's points
    std::vector<Point>
        cutPieces;  // an end of each run of boundary that lies between others and closes nothing
};

EnclosedAreas FindAreas(const BoundaryNet& net);

}  // namespace vemrado::map
