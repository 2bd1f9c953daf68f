#include "boundary_net.h"

#include <algorithm>
#include <array>

#include "clearance.h"

namespace generate {

uint32_t BoundaryNet::AddNode(GridPoint point) {
    nodes.push_back(point);
    degrees.push_back(0);
    return static_cast<uint32_t>(nodes.size() - 1);
}

uint32_t BoundaryNet::AddEdge(uint32_t from, uint32_t to, Side side) {
    edges.push_back({from, to, 0, side});
    return static_cast<uint32_t>(edges.size() - 1);
}

uint32_t BoundaryNet::StartNode(HalfEdge half) const {
    const Edge& edge = edges[half / 2];
    return half % 2 == 0 ? edge.from : edge.to;
}

BoundaryNet::Face BoundaryNet::AddOutline(const Ring& ring, const std::vector<Side>& sides) {
    const auto firstNode = static_cast<uint32_t>(nodes.size());
    for (const Point& point : ring) {
        AddNode(grid.Snap(point));
        degrees.back() = 2;
    }
    firstEdgeOfOutline = static_cast<uint32_t>(edges.size());
    const auto count = static_cast<uint32_t>(ring.size());
    Face face;
    for (uint32_t i = 0; i < count; ++i) {
        face.push_back(2 * AddEdge(firstNode + i, firstNode + (i + 1) % count, sides[i]));
    }
    lines.push_back({face.front() / 2, count, true});
    return face;
}

void BoundaryNet::AppendParts(HalfEdge half, Face& face) const {
    const uint32_t child = edges[half / 2].child;
    if (child == 0) {
        face.push_back(half);
    } else if (half % 2 == 0) {
        AppendParts(2 * child, face);
        AppendParts(2 * (child + 1), face);
    } else {
        AppendParts(2 * (child + 1) + 1, face);
        AppendParts(2 * child + 1, face);
    }
}

void BoundaryNet::Refine(Face& face) const {
    const bool divided =
        std::any_of(face.begin(), face.end(), [&](HalfEdge half) { return edges[half / 2].child != 0; });
    if (!divided) return;
    Face refined;
    refined.reserve(face.size() + 8);
    for (const HalfEdge half : face) AppendParts(half, refined);
    face = std::move(refined);
}

void BoundaryNet::Outline(const Face& face, Ring& ring, std::vector<Side>& sides) const {
    ring.clear();
    sides.clear();
    for (const HalfEdge half : face) {
        ring.push_back(At(StartNode(half)));
        sides.push_back(edges[half / 2].side);
    }
}

BoundaryNet::ChordEnd BoundaryNet::EndAt(const Face& face, const Crossing& crossing, double snap) const {
    const HalfEdge half = face[crossing.edge];
    const Edge& edge = edges[half / 2];
    const double length = Length(At(edge.to) - At(edge.from));
    const std::size_t next = (crossing.edge + 1) % face.size();
    if (crossing.share * length < snap) return {crossing.edge, true, nodes[StartNode(half)]};
    if ((1 - crossing.share) * length < snap) return {next, true, nodes[StartNode(face[next])]};
    return {crossing.edge, false, grid.Snap(crossing.at)};
}

// Whether a chord and the two parts of each edge that it ends on are clear of each other and of all edges
// inside the outline.
bool BoundaryNet::IsClear(const Face& face, const ChordEnd& behind, const ChordEnd& ahead) const {
    std::array<Segment, 5> added{{{grid.ToMetres(behind.at), grid.ToMetres(ahead.at)}}};
    std::size_t count = 1;
    std::array<uint32_t, 2> divided{};
    for (const ChordEnd& end : {behind, ahead}) {
        if (end.isNode) continue;
        const uint32_t edge = face[end.edge] / 2;
        divided[count / 2] = edge;
        added[count++] = {At(edges[edge].from), grid.ToMetres(end.at)};
        added[count++] = {grid.ToMetres(end.at), At(edges[edge].to)};
    }
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < i; ++k)
            if (!AreClear(added[i], added[k])) return false;
    }
    for (uint32_t edge = firstEdgeOfOutline; edge < edges.size(); ++edge) {
        if (edges[edge].child != 0 || edge == divided[0] || edge == divided[1]) continue;
        const Segment other{At(edges[edge].from), At(edges[edge].to)};
        for (std::size_t i = 0; i < count; ++i)
            if (!AreClear(added[i], other)) return false;
    }
    return true;
}

bool BoundaryNet::IsClear(GridPoint from, GridPoint to) const {
    const Segment line{grid.ToMetres(from), grid.ToMetres(to)};
    return std::none_of(edges.begin() + 1, edges.end(), [&](const Edge& edge) {
        return edge.child == 0 && !AreClear(line, {At(edge.from), At(edge.to)});
    });
}

// The position in the face of the half edge that starts at an end of a chord; divides an edge for it when
// needed.
std::size_t BoundaryNet::NodeAt(Face& face, const ChordEnd& end) {
    if (end.isNode) return end.edge;
    const HalfEdge half = face[end.edge];
    const Edge edge = edges[half / 2];
    const uint32_t node = AddNode(end.at);
    degrees[node] = 2;
    const uint32_t first = AddEdge(edge.from, node, edge.side);
    AddEdge(node, edge.to, edge.side);
    edges[half / 2].child = first;
    const bool backwards = half % 2 != 0;
    face[end.edge] = backwards ? 2 * (first + 1) + 1 : 2 * first;
    face.insert(face.begin() + static_cast<std::ptrdiff_t>(end.edge) + 1,
                backwards ? 2 * first + 1 : 2 * (first + 1));
    return end.edge + 1;
}

// A face of hardly any area or width is no parcel.
bool BoundaryNet::IsSliver(const Face& face) const {
    constexpr double leastArea = 12;
    if (face.size() < 3) return true;
    Ring ring;
    std::vector<Side> sides;
    Outline(face, ring, sides);
    return Area(ring) < leastArea || IsThin(ring);
}

bool BoundaryNet::Cut(Face& face, Point inside, Point direction, double snap, Face& leftPart,
                      Face& rightPart) {
    Refine(face);
    Ring ring;
    std::vector<Side> sides;
    Outline(face, ring, sides);
    Chord chord;
    if (!FindChord(ring, inside, direction, chord)) return false;
    if (Area(LeftOf(ring, chord)) < 20 || Area(RightOf(ring, chord)) < 20) return false;

    const ChordEnd ahead = EndAt(face, chord.ahead, snap);
    const ChordEnd behind = EndAt(face, chord.behind, snap);
    if (!IsClear(face, behind, ahead)) return false;

    // The later edge first, so that the position of the earlier one stays right.
    const bool aheadFirst = ahead.edge > behind.edge;
    std::size_t laterAt = NodeAt(face, aheadFirst ? ahead : behind);
    const std::size_t sizeBefore = face.size();
    const std::size_t earlierAt = NodeAt(face, aheadFirst ? behind : ahead);
    if (face.size() > sizeBefore && laterAt >= earlierAt) ++laterAt;

    std::size_t from = aheadFirst ? laterAt : earlierAt;
    const std::size_t to = aheadFirst ? earlierAt : laterAt;
    leftPart.clear();
    rightPart.clear();
    for (std::size_t i = from; i != to; i = (i + 1) % face.size()) leftPart.push_back(face[i]);
    for (std::size_t i = to; i != from; i = (i + 1) % face.size()) rightPart.push_back(face[i]);
    if (leftPart.size() < 2 || rightPart.size() < 2) return false;

    const uint32_t behindNode = StartNode(face[to]);
    const uint32_t aheadNode = StartNode(face[from]);
    const uint32_t edge = AddEdge(behindNode, aheadNode, Side::plot);
    leftPart.push_back(2 * edge);
    rightPart.push_back(2 * edge + 1);
    if (IsSliver(leftPart) || IsSliver(rightPart)) {
        edges.pop_back();
        return false;
    }
    ++degrees[behindNode];
    ++degrees[aheadNode];
    lines.push_back({edge, 1, false});
    return true;
}

void BoundaryNet::Line(std::size_t index, std::vector<GridPoint>& points) const {
    const RootLine& line = lines[index];
    Face halves;
    for (uint32_t i = 0; i < line.edgeCount; ++i) AppendParts(2 * (line.firstEdge + i), halves);
    points.clear();
    for (const HalfEdge half : halves) points.push_back(nodes[StartNode(half)]);
    points.push_back(nodes[edges[halves.back() / 2].to]);
}

}  // namespace generate
