#include "boundary_net.h"

#include <algorithm>

namespace generate {

uint32_t BoundaryNet::AddNode(Point point) {
    nodes.push_back(grid.Snap(point));
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
        AddNode(point);
        degrees.back() = 2;
    }
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

// The position in the face of the half edge that starts at the crossing; divides an edge for it when needed.
std::size_t BoundaryNet::NodeAt(Face& face, const Crossing& crossing, double snap) {
    const HalfEdge half = face[crossing.edge];
    const Edge edge = edges[half / 2];
    const double length = Length(At(edge.to) - At(edge.from));
    if (crossing.share * length < snap) return crossing.edge;
    if ((1 - crossing.share) * length < snap) return (crossing.edge + 1) % face.size();

    const uint32_t node = AddNode(crossing.at);
    degrees[node] = 2;
    const uint32_t first = AddEdge(edge.from, node, edge.side);
    AddEdge(node, edge.to, edge.side);
    edges[half / 2].child = first;
    const bool backwards = half % 2 != 0;
    face[crossing.edge] = backwards ? 2 * (first + 1) + 1 : 2 * first;
    face.insert(face.begin() + static_cast<std::ptrdiff_t>(crossing.edge) + 1,
                backwards ? 2 * first + 1 : 2 * (first + 1));
    return crossing.edge + 1;
}

// A face of fewer than three edges or hardly any area is no parcel.
bool BoundaryNet::IsThin(const Face& face) const {
    if (face.size() < 3) return true;
    double twice = 0;
    const Point origin = At(StartNode(face[0]));
    Point last = At(StartNode(face.back())) - origin;
    for (const HalfEdge half : face) {
        const Point next = At(StartNode(half)) - origin;
        twice += Cross(last, next);
        last = next;
    }
    return twice < 2 * 12.0;
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

    // The later edge first, so that the position of the earlier one stays right.
    const bool aheadFirst = chord.ahead.edge > chord.behind.edge;
    const Crossing& later = aheadFirst ? chord.ahead : chord.behind;
    const Crossing& earlier = aheadFirst ? chord.behind : chord.ahead;
    std::size_t laterAt = NodeAt(face, later, snap);
    const std::size_t sizeBefore = face.size();
    const std::size_t earlierAt = NodeAt(face, earlier, snap);
    if (face.size() > sizeBefore && laterAt >= earlierAt) ++laterAt;
    if (laterAt == earlierAt) return false;

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
    if (IsThin(leftPart) || IsThin(rightPart)) {
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
