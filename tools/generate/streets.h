// The streets of a sheet: its cell is divided by the stream and then again and again by streets, until the
// blocks between them have the size that suits the place.

#pragma once

#include <cstdint>
#include <vector>

#include "country.h"
#include "geometry.h"
#include "random.h"

namespace generate {

// What lies beyond an edge of a block or of a plot.
enum class Side : uint8_t { plot, road, track, stream };

struct Block {
    Ring outline;             // the parcels' outer boundary
    std::vector<Side> sides;  // of the outline's edges
    double town = 0;          // distance from the town, as Country::TownDistance
};

struct Street {
    Path path;
    double halfWidth = 0;
    bool main = false;
    uint64_t nameKey = 0;
};

struct StreetPlan {
    Ring land;  // inside the centre lines of the main roads
    std::vector<Block> blocks;
    std::vector<Street> streets;
    Path stream;                 // centre line, empty when there is none
    double streamHalfWidth = 0;  // to the boundary of the stream's parcel
};

StreetPlan PlanStreets(const Country& country, Cell cell, Random& random);

// The outline moved out to the kerb on its road edges: strokes along those edges with rounded corners.
struct KerbPoint {
    Point at;
    bool startsStroke = false;
    double radius = 0;  // of the arc that ends here, 0 on straight edges
};
std::vector<KerbPoint> KerbOf(const Block& block, double pavement);

}  // namespace generate
