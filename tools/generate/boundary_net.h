// The net of parcel boundaries of one sheet. Neighbouring parcels share their boundary: each line is drawn
// once, and every point where another line meets it is a point of it. Points lie on the grid of the file's
// coordinates. Lines cross nowhere: outlines are simple and lie apart, and a line that divides one is added
// only when it and the edges that it bends, all with the points that are written, are clear of the other
// edges.

#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"
#include "streets.h"

namespace generate {

// Coordinates in units of the last decimal place, east and north of the country's origin.
struct GridPoint {
    int64_t east = 0;
    int64_t north = 0;
    bool operator==(const GridPoint&) const = default;
};

class Grid {
  public:
    explicit Grid(int unitsPerMetre) : units(unitsPerMetre) {}
    int UnitsPerMetre() const { return units; }
    GridPoint Snap(Point point) const {
        return {std::llround(point.east * units), std::llround(point.north * units)};
    }
    Point ToMetres(GridPoint point) const {
        return {static_cast<double>(point.east) / units, static_cast<double>(point.north) / units};
    }

  private:
    int units;
};

class BoundaryNet {
  public:
    // An edge in one of its two directions: 2 * edge, plus 1 when it is run backwards.
    using HalfEdge = uint32_t;
    using Face = std::vector<HalfEdge>;

    explicit BoundaryNet(Grid coordinates) : grid(coordinates) {}

    // A closed boundary of its own, a simple ring; gives the face inside it, which is divided before the next
    // outline is added.
    Face AddOutline(const Ring& ring, const std::vector<Side>& sides);

    // Divides a face by a chord through a point inside it. The chord's ends are moved to points of the
    // boundary that are nearer than snap; other ends become points of the boundary. False when there is no
    // such chord, when it is not clear of all other boundaries, or when a part would be a sliver.
    bool Cut(Face& face, Point inside, Point direction, double snap, Face& leftPart, Face& rightPart);

    // Whether a line between two places would be clear of all boundaries.
    bool IsClear(GridPoint from, GridPoint to) const;

    // The face's boundary with all points that lines on its other side have added since.
    void Refine(Face& face) const;
    // Points and sides of a face's edges, as they stand in the face.
    void Outline(const Face& face, Ring& ring, std::vector<Side>& sides) const;

    // Every line added so far, each once, with all of its points.
    std::size_t LineCount() const { return lines.size(); }
    void Line(std::size_t index, std::vector<GridPoint>& points) const;
    bool IsOutline(std::size_t index) const { return lines[index].closed; }

    const std::vector<GridPoint>& Nodes() const { return nodes; }
    // Lines that meet at a node; 2 on a plain bend.
    int Degree(std::size_t node) const { return degrees[node]; }

  private:
    struct Edge {
        uint32_t from;
        uint32_t to;
        uint32_t child;  // the first of its two parts once divided, else 0
        Side side;
    };
    // An end of a chord: a node of the face's boundary, or a place on an edge that is to become one.
    struct ChordEnd {
        std::size_t edge;
        bool isNode;
        GridPoint at;
    };
    struct RootLine {
        uint32_t firstEdge;
        uint32_t edgeCount;
        bool closed;
    };

    uint32_t AddNode(GridPoint point);
    uint32_t AddEdge(uint32_t from, uint32_t to, Side side);
    uint32_t StartNode(HalfEdge half) const;
    Point At(uint32_t node) const { return grid.ToMetres(nodes[node]); }
    void AppendParts(HalfEdge half, Face& face) const;
    ChordEnd EndAt(const Face& face, const Crossing& crossing, double snap) const;
    bool IsClear(const Face& face, const ChordEnd& behind, const ChordEnd& ahead) const;
    std::size_t NodeAt(Face& face, const ChordEnd& end);
    bool IsSliver(const Face& face) const;

    Grid grid;
    std::vector<GridPoint> nodes;
    std::vector<int> degrees;
    std::vector<Edge> edges = {{0, 0, 0, Side::plot}};  // edge 0 is none
    uint32_t firstEdgeOfOutline = 1;                    // the last outline's
    std::vector<RootLine> lines;
};

}  // namespace generate
