// Boundary lines as a net: points joined by straight edges that meet at their points only.
//
// Lines are taken as they come. Build then cuts them wherever they meet or cross and keeps each piece once,
// so that a boundary that is there for both neighbours does no harm, nor does a corner on a neighbour's
// segment. Nothing is closed by guess: what lies closer than a thousandth of a millimetre is the same place
// (decimal numbers and sums with a sheet's origin are rounded that much), and everything wider is a gap.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "map/geometry.h"

namespace vemrado::map {

class BoundaryNet {
  public:
    static constexpr double samePlace = 1e-6;  // m

    struct Edge {
        uint32_t from = 0;     // the lower number of its two points
        uint32_t to = 0;       // the higher
        uint32_t sources = 0;  // into Sources()
    };

    // Adds a line of two points or more, with the number of where it comes from (a sheet).
    void Add(std::span<const Point> line, uint32_t source = 0);

    // Cuts all lines at their meeting places. False when they cross so often that no map can mean it (more
    // than 64 times a segment on average, with a million more); the net is empty then. Takes about n log n
    // time.
    bool Build();

    // After Build. Points of no edge may be among the points.
    const std::vector<Point>& Points() const { return points; }
    const std::vector<Edge>& Edges() const { return edges; }
    // Where lines crossed at a place that is a point of neither.
    const std::vector<Point>& Crossings() const { return crossings; }
    // The numbers of where an edge comes from, ascending.
    std::span<const uint32_t> SourcesOf(const Edge& edge) const { return sourceSets[edge.sources]; }

  private:
    struct Cut {
        uint32_t edge;
        uint32_t point;
        double along;  // share of the edge's length before the point
    };

    uint32_t PointAt(Point place);
    uint32_t SourceSet(std::vector<uint32_t> numbers);
    Box BoxOf(const Edge& edge) const;
    void KeepEachOnce();
    bool FindCuts(size_t fresh, std::vector<Cut>& cuts);
    void CompareEdges(uint32_t one, uint32_t other, std::vector<Cut>& cuts);
    bool CutAt(uint32_t edge, uint32_t point, std::vector<Cut>& cuts) const;
    size_t Apply(std::vector<Cut>& cuts);

    std::vector<Point> points;
    std::unordered_multimap<uint64_t, uint32_t> pointsOfCell;
    std::vector<Edge> edges;
    std::vector<std::vector<uint32_t>> sourceSets;
    std::unordered_map<uint64_t, uint32_t> setOfPair;  // union of two sets that were met before
    std::vector<Point> crossings;
};

}  // namespace vemrado::map
