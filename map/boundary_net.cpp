#include "map/boundary_net.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "map/box_tree.h"

namespace vemrado::map {
namespace {

constexpr double cellSize = 4 * BoundaryNet::samePlace;
// More cuts than these mean no map.
constexpr size_t mostCutsPerEdge = 64;
constexpr size_t mostCutsOfFew = 1000000;
// A cut moves an edge by no more than the rounding of its point, so a few rounds find everything.
constexpr int mostRounds = 8;

double Cross(Point origin, Point a, Point b) {
    return (a.x - origin.x) * (b.y - origin.y) - (a.y - origin.y) * (b.x - origin.x);
}

double SquaredDistance(Point a, Point b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

constexpr double samePlaceSquared = BoundaryNet::samePlace * BoundaryNet::samePlace;

// A mark of the cell of the grid that holds a place. Cells that share a mark by chance cost a comparison.
uint64_t CellOf(double x, double y) {
    constexpr uint64_t spread = 0x9E3779B97F4A7C15;
    const auto column = static_cast<uint64_t>(static_cast<int64_t>(std::floor(x / cellSize)));
    const auto row = static_cast<uint64_t>(static_cast<int64_t>(std::floor(y / cellSize)));
    return (column * spread ^ row) * spread;
}

}  // namespace

// The point at a place: one that is there already, or a new one.
uint32_t BoundaryNet::PointAt(Point place) {
    const double reach = samePlace;
    uint64_t looked[4];
    size_t count = 0;
    for (const double x : {place.x - reach, place.x + reach}) {
        for (const double y : {place.y - reach, place.y + reach}) {
            const uint64_t cell = CellOf(x, y);
            if (std::find(looked, looked + count, cell) != looked + count) continue;
            looked[count++] = cell;
            const auto [first, last] = pointsOfCell.equal_range(cell);
            for (auto entry = first; entry != last; ++entry) {
                if (SquaredDistance(points[entry->second], place) <= samePlaceSquared) return entry->second;
            }
        }
    }
    const auto number = static_cast<uint32_t>(points.size());
    points.push_back({place.x + 0.0, place.y + 0.0});  // without a negative zero
    pointsOfCell.emplace(CellOf(place.x, place.y), number);
    return number;
}

uint32_t BoundaryNet::SourceSet(std::vector<uint32_t> numbers) {
    sourceSets.push_back(std::move(numbers));
    return static_cast<uint32_t>(sourceSets.size() - 1);
}

void BoundaryNet::Add(std::span<const Point> line, uint32_t source) {
    if (line.size() < 2) return;
    if (sourceSets.empty() || sourceSets.back() != std::vector{source}) SourceSet({source});
    const auto set = static_cast<uint32_t>(sourceSets.size() - 1);
    uint32_t before = PointAt(line[0]);
    for (const Point place : line.subspan(1)) {
        const uint32_t point = PointAt(place);
        if (point != before) edges.push_back({std::min(before, point), std::max(before, point), set});
        before = point;
    }
}

Box BoundaryNet::BoxOf(const Edge& edge) const {
    Box box;
    box.Add(points[edge.from]);
    box.Add(points[edge.to]);
    return box;
}

// Sorts the edges and joins those between the same points.
void BoundaryNet::KeepEachOnce() {
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) {
        if (a.from != b.from) return a.from < b.from;
        return a.to != b.to ? a.to < b.to : a.sources < b.sources;
    });
    size_t kept = 0;
    for (const Edge& edge : edges) {
        if (kept == 0 || edges[kept - 1].from != edge.from || edges[kept - 1].to != edge.to) {
            edges[kept++] = edge;
            continue;
        }
        Edge& twin = edges[kept - 1];
        if (twin.sources == edge.sources) continue;
        const auto [place, isNew] = setOfPair.try_emplace(uint64_t{twin.sources} << 32 | edge.sources, 0u);
        if (isNew) {
            std::vector<uint32_t> both;
            std::set_union(sourceSets[twin.sources].begin(), sourceSets[twin.sources].end(),
                           sourceSets[edge.sources].begin(), sourceSets[edge.sources].end(),
                           std::back_inserter(both));
            place->second = SourceSet(std::move(both));
        }
        twin.sources = place->second;
    }
    edges.resize(kept);
}

bool BoundaryNet::Build() {
    KeepEachOnce();
    std::vector<Cut> cuts;
    size_t fresh = 0;  // edges from here on are not yet compared with all others
    for (int round = 0; round < mostRounds && fresh < edges.size(); ++round) {
        if (!FindCuts(fresh, cuts)) {
            edges.clear();
            crossings.clear();
            return false;
        }
        fresh = Apply(cuts);
    }
    KeepEachOnce();
    return true;
}

// Compares the edges from `fresh` on with each other and with all before them.
bool BoundaryNet::FindCuts(size_t fresh, std::vector<Cut>& cuts) {
    cuts.clear();
    std::vector<Box> boxes;
    boxes.reserve(edges.size());
    for (const Edge& edge : edges) boxes.push_back(BoxOf(edge));
    const BoxTree tree(boxes);
    const size_t most = mostCutsPerEdge * edges.size() + mostCutsOfFew;
    for (size_t i = fresh; i < edges.size(); ++i) {
        const auto one = static_cast<uint32_t>(i);
        tree.Search(boxes[i].Grown(samePlace), [&](uint32_t other) {
            if (other < one) CompareEdges(one, other, cuts);
            return cuts.size() <= most;
        });
        if (cuts.size() > most) return false;
    }
    return true;
}

void BoundaryNet::CompareEdges(uint32_t one, uint32_t other, std::vector<Cut>& cuts) {
    const Edge a = edges[one];
    const Edge b = edges[other];
    bool touch = a.from == b.from || a.from == b.to || a.to == b.from || a.to == b.to;
    for (const uint32_t point : {b.from, b.to}) touch |= CutAt(one, point, cuts);
    for (const uint32_t point : {a.from, a.to}) touch |= CutAt(other, point, cuts);
    if (touch) return;
    const Point p = points[a.from];
    const Point q = points[a.to];
    const Point r = points[b.from];
    const Point s = points[b.to];
    const double sideR = Cross(p, q, r);
    const double sideS = Cross(p, q, s);
    if ((sideR > 0) == (sideS > 0) || (Cross(r, s, p) > 0) == (Cross(r, s, q) > 0)) return;
    const double along = sideR / (sideR - sideS);
    const uint32_t crossing = PointAt({r.x + (s.x - r.x) * along, r.y + (s.y - r.y) * along});
    crossings.push_back(points[crossing]);
    CutAt(one, crossing, cuts);
    CutAt(other, crossing, cuts);
}

// Cuts an edge at a point that lies on it, if it does. Points closer to an end than rounding reaches are that
// end.
bool BoundaryNet::CutAt(uint32_t number, uint32_t point, std::vector<Cut>& cuts) const {
    const Edge& edge = edges[number];
    if (point == edge.from || point == edge.to) return false;
    const Point from = points[edge.from];
    const Point to = points[edge.to];
    const Point at = points[point];
    const double lengthSquared = SquaredDistance(from, to);
    const double along =
        ((at.x - from.x) * (to.x - from.x) + (at.y - from.y) * (to.y - from.y)) / lengthSquared;
    if (!(along > 0 && along < 1)) return false;
    const double side = Cross(from, to, at);
    if (side * side > samePlaceSquared * lengthSquared) return false;
    cuts.push_back({number, point, along});
    return true;
}

// Replaces edges by their pieces, which come to the end. Returns where the pieces begin.
size_t BoundaryNet::Apply(std::vector<Cut>& cuts) {
    std::sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) {
        return a.edge != b.edge ? a.edge < b.edge : a.along < b.along;
    });
    std::vector<Edge> pieces;
    for (size_t i = 0; i < cuts.size();) {
        const uint32_t number = cuts[i].edge;
        Edge& edge = edges[number];
        uint32_t before = edge.from;
        const auto add = [&](uint32_t point) {
            if (point != before)
                pieces.push_back({std::min(before, point), std::max(before, point), edge.sources});
            before = point;
        };
        for (; i < cuts.size() && cuts[i].edge == number; ++i) add(cuts[i].point);
        add(edge.to);
        edge.to = edge.from;  // gone
    }
    std::erase_if(edges, [](const Edge& edge) { return edge.from == edge.to; });
    const size_t fresh = edges.size();
    edges.insert(edges.end(), pieces.begin(), pieces.end());
    return fresh;
}

}  // namespace vemrado::map
