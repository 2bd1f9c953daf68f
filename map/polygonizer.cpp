#include "map/polygonizer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "map/box_tree.h"

namespace vemrado::map {
namespace {

constexpr uint32_t none = std::numeric_limits<uint32_t>::max();

// Twice the area that a ring encloses, positive when it runs counter-clockwise.
double TwiceArea(const Ring& ring) {
    double sum = 0;
    const Point origin = ring.front();
    for (size_t i = 0; i + 1 < ring.size(); ++i) {
        sum += (ring[i].x - origin.x) * (ring[i + 1].y - origin.y) -
               (ring[i + 1].x - origin.x) * (ring[i].y - origin.y);
    }
    return sum;
}

bool IsInRing(const Ring& ring, Point point) {
    bool inside = false;
    for (size_t i = 0; i + 1 < ring.size(); ++i) {
        const Point a = ring[i];
        const Point b = ring[i + 1];
        if ((a.y > point.y) == (b.y > point.y)) continue;
        if (point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    }
    return inside;
}

Box BoundsOf(const Ring& ring) {
    Box bounds;
    for (const Point point : ring) bounds.Add(point);
    return bounds;
}

// The net as half-edges. Half-edge 2e runs along edge e from its lower point, 2e + 1 back.
class PlanarGraph {
  public:
    explicit PlanarGraph(const BoundaryNet& from) : net(from), isOpen(net.Edges().size(), false) { Link(); }

    uint32_t HalfEdges() const { return static_cast<uint32_t>(2 * net.Edges().size()); }
    bool IsOpen(uint32_t halfEdge) const { return isOpen[halfEdge / 2]; }
    uint32_t Start(uint32_t halfEdge) const {
        const BoundaryNet::Edge& edge = net.Edges()[halfEdge / 2];
        return halfEdge % 2 == 0 ? edge.from : edge.to;
    }
    uint32_t End(uint32_t halfEdge) const { return Start(halfEdge ^ 1); }
    // The next half-edge round the area on the left.
    uint32_t Next(uint32_t halfEdge) const { return next[halfEdge]; }
    Point PlaceOf(uint32_t point) const { return net.Points()[point]; }

    // Opens the edges that hang on free ends, and gives those ends.
    std::vector<Point> OpenDangling();
    // Opens the edges with the same area on both sides, and gives an end of each run of them.
    std::vector<Point> OpenCuts();

  private:
    void Link();
    void OpenRun(uint32_t half);
    uint32_t DegreeOf(uint32_t point) const { return firstOfPoint[point + 1] - firstOfPoint[point]; }

    const BoundaryNet& net;
    std::vector<bool> isOpen;            // by edge: bounds nothing
    std::vector<uint32_t> firstOfPoint;  // into around
    std::vector<uint32_t> around;        // half-edges that leave a point, counter-clockwise
    std::vector<uint32_t> next;
};

// Whether the direction of a comes before that of b, counter-clockwise from the east.
bool ComesBefore(Point a, Point b) {
    const bool lowerA = a.y < 0 || (a.y == 0 && a.x < 0);
    const bool lowerB = b.y < 0 || (b.y == 0 && b.x < 0);
    if (lowerA != lowerB) return lowerB;
    return a.x * b.y - a.y * b.x > 0;
}

// Joins the half-edges at every point, without the open ones.
void PlanarGraph::Link() {
    firstOfPoint.assign(net.Points().size() + 1, 0);
    next.assign(HalfEdges(), none);
    for (uint32_t half = 0; half < HalfEdges(); ++half) {
        if (!IsOpen(half)) ++firstOfPoint[Start(half) + 1];
    }
    std::partial_sum(firstOfPoint.begin(), firstOfPoint.end(), firstOfPoint.begin());
    around.resize(firstOfPoint.back());
    std::vector<uint32_t> free(firstOfPoint.begin(), firstOfPoint.end() - 1);
    for (uint32_t half = 0; half < HalfEdges(); ++half) {
        if (!IsOpen(half)) around[free[Start(half)]++] = half;
    }
    for (size_t point = 0; point + 1 < firstOfPoint.size(); ++point) {
        const auto first = around.begin() + firstOfPoint[point];
        const auto last = around.begin() + firstOfPoint[point + 1];
        const Point centre = PlaceOf(static_cast<uint32_t>(point));
        std::sort(first, last, [&](uint32_t a, uint32_t b) {
            const Point toA = PlaceOf(End(a));
            const Point toB = PlaceOf(End(b));
            return ComesBefore({toA.x - centre.x, toA.y - centre.y}, {toB.x - centre.x, toB.y - centre.y});
        });
        // Whoever arrives turns off as far to the left as can be: into the half-edge right before its own way
        // back.
        for (auto leaving = first; leaving != last; ++leaving) {
            const auto before = leaving == first ? last - 1 : leaving - 1;
            next[*leaving ^ 1] = *before;
        }
    }
}

std::vector<Point> PlanarGraph::OpenDangling() {
    std::vector<uint32_t> degree(net.Points().size());
    for (size_t point = 0; point < degree.size(); ++point)
        degree[point] = DegreeOf(static_cast<uint32_t>(point));
    std::vector<Point> freeEnds;
    std::vector<uint32_t> ends;
    for (uint32_t point = 0; point < degree.size(); ++point) {
        if (degree[point] != 1) continue;
        freeEnds.push_back(PlaceOf(point));
        ends.push_back(point);
    }
    while (!ends.empty()) {
        const uint32_t point = ends.back();
        ends.pop_back();
        for (uint32_t i = firstOfPoint[point]; i < firstOfPoint[point + 1]; ++i) {
            const uint32_t half = around[i];
            if (IsOpen(half)) continue;
            isOpen[half / 2] = true;
            --degree[point];
            if (--degree[End(half)] == 1) ends.push_back(End(half));
        }
    }
    if (!freeEnds.empty()) Link();
    return freeEnds;
}

// Opens the edges from a half-edge on up to the next point where more than two meet.
void PlanarGraph::OpenRun(uint32_t half) {
    for (;; half = next[half]) {
        isOpen[half / 2] = true;
        if (DegreeOf(End(half)) != 2) return;
    }
}

std::vector<Point> PlanarGraph::OpenCuts() {
    std::vector<uint32_t> walkOf(HalfEdges(), none);
    for (uint32_t start = 0; start < HalfEdges(); ++start) {
        for (uint32_t half = start; next[half] != none && walkOf[half] == none; half = next[half])
            walkOf[half] = start;
    }
    std::vector<uint32_t> cuts;
    for (uint32_t half = 0; half < HalfEdges(); half += 2) {
        if (!IsOpen(half) && walkOf[half] == walkOf[half + 1]) cuts.push_back(half / 2);
    }
    std::vector<Point> runs;
    for (const uint32_t edge : cuts) {
        for (const uint32_t half : {2 * edge, 2 * edge + 1}) {
            if (IsOpen(half) || DegreeOf(Start(half)) == 2) continue;
            runs.push_back(PlaceOf(Start(half)));
            OpenRun(half);
        }
    }
    if (!cuts.empty()) Link();
    return runs;
}

// Takes the rings out of the walks round the areas of a graph, and puts areas together of them.
class AreaBuilder {
  public:
    AreaBuilder(const BoundaryNet& from, const PlanarGraph& planar)
        : net(from), graph(planar), areaOfHalf(planar.HalfEdges(), none) {}

    std::vector<Area> Build();

  private:
    struct Hole {
        Ring ring;
        uint32_t part;  // of the net
        std::vector<uint32_t> halves;
    };

    void FindParts();
    void TakeWalk(uint32_t start, std::vector<bool>& seen);
    void TakeRing(std::vector<uint32_t> halves, uint32_t& shellOfWalk, std::vector<Hole>& holesOfWalk);
    void AddHole(uint32_t area, Hole hole);
    void PlaceHoles();
    void AddNeighbours();
    Ring RingOf(const std::vector<uint32_t>& halves) const;

    const BoundaryNet& net;
    const PlanarGraph& graph;
    std::vector<Area> areas;
    std::vector<uint32_t> partOfArea;
    std::vector<uint32_t> partOfPoint;  // the part of the net that a point hangs together with
    std::vector<Hole> looseHoles;       // whose area is still to be found
    std::vector<uint32_t> areaOfHalf;   // the area on the left
};

// Numbers the parts of the net by the lowest of their points.
void AreaBuilder::FindParts() {
    partOfPoint.resize(net.Points().size());
    std::iota(partOfPoint.begin(), partOfPoint.end(), 0u);
    const auto partOf = [&](uint32_t point) {
        while (partOfPoint[point] != point) point = partOfPoint[point] = partOfPoint[partOfPoint[point]];
        return point;
    };
    for (uint32_t half = 0; half < graph.HalfEdges(); half += 2) {
        if (graph.IsOpen(half)) continue;
        const uint32_t one = partOf(graph.Start(half));
        const uint32_t other = partOf(graph.End(half));
        partOfPoint[std::max(one, other)] = std::min(one, other);
    }
    for (uint32_t point = 0; point < partOfPoint.size(); ++point) partOfPoint[point] = partOf(point);
}

Ring AreaBuilder::RingOf(const std::vector<uint32_t>& halves) const {
    Ring ring;
    ring.reserve(halves.size() + 1);
    for (const uint32_t half : halves) ring.push_back(graph.PlaceOf(graph.Start(half)));
    ring.push_back(ring.front());
    return ring;
}

// A walk round one side of a part of the net. Where it comes to a point again, a ring closes.
void AreaBuilder::TakeWalk(uint32_t start, std::vector<bool>& seen) {
    std::vector<uint32_t> walk;
    std::vector<Hole> holes;
    uint32_t shell = none;
    std::unordered_map<uint32_t, size_t> placeOfPoint;  // in the walk
    for (uint32_t half = start; !seen[half]; half = graph.Next(half)) {
        seen[half] = true;
        placeOfPoint[graph.Start(half)] = walk.size();
        walk.push_back(half);
        const auto met = placeOfPoint.find(graph.End(half));
        if (met == placeOfPoint.end()) continue;
        std::vector<uint32_t> ring(walk.begin() + static_cast<std::ptrdiff_t>(met->second), walk.end());
        walk.resize(met->second);
        for (const uint32_t closed : ring) placeOfPoint.erase(graph.Start(closed));
        TakeRing(std::move(ring), shell, holes);
    }
    for (Hole& hole : holes) {
        if (shell != none) {
            AddHole(shell, std::move(hole));
        } else {
            looseHoles.push_back(std::move(hole));
        }
    }
}

void AreaBuilder::TakeRing(std::vector<uint32_t> halves, uint32_t& shellOfWalk,
                           std::vector<Hole>& holesOfWalk) {
    Ring ring = RingOf(halves);
    const double size = TwiceArea(ring) / 2;
    const uint32_t part = partOfPoint[graph.Start(halves.front())];
    if (!(size > 0)) {
        holesOfWalk.push_back({std::move(ring), part, std::move(halves)});
        return;
    }
    shellOfWalk = static_cast<uint32_t>(areas.size());
    for (const uint32_t half : halves) areaOfHalf[half] = shellOfWalk;
    Area& area = areas.emplace_back();
    area.bounds = BoundsOf(ring);
    area.size = size;
    area.rings.push_back(std::move(ring));
    partOfArea.push_back(part);
}

void AreaBuilder::AddHole(uint32_t area, Hole hole) {
    for (const uint32_t half : hole.halves) areaOfHalf[half] = area;
    areas[area].size += TwiceArea(hole.ring) / 2;  // which is negative
    areas[area].rings.push_back(std::move(hole.ring));
}

// A part of the net inside an area is a hole in it: in the smallest area of another part that holds it.
void AreaBuilder::PlaceHoles() {
    std::vector<Box> bounds;
    std::vector<double> sizes;  // of the outer rings
    for (const Area& area : areas) {
        bounds.push_back(area.bounds);
        sizes.push_back(TwiceArea(area.rings.front()) / 2);
    }
    const BoxTree tree(bounds);
    for (Hole& hole : looseHoles) {
        const Point place = hole.ring.front();
        uint32_t holder = none;
        tree.Search({place.x, place.y, place.x, place.y}, [&](uint32_t area) {
            if (partOfArea[area] != hole.part && (holder == none || sizes[area] < sizes[holder]) &&
                IsInRing(areas[area].rings.front(), place))
                holder = area;
            return true;
        });
        if (holder != none) AddHole(holder, std::move(hole));
    }
}

void AreaBuilder::AddNeighbours() {
    for (uint32_t half = 0; half < graph.HalfEdges(); ++half) {
        const uint32_t here = areaOfHalf[half];
        const uint32_t there = areaOfHalf[half ^ 1];
        if (here == none) continue;
        Area& area = areas[here];
        const auto sources = net.SourcesOf(net.Edges()[half / 2]);
        area.sources.insert(area.sources.end(), sources.begin(), sources.end());
        if (there != none && there != here) area.neighbours.push_back(there);
    }
    for (Area& area : areas) {
        for (std::vector<uint32_t>* list : {&area.sources, &area.neighbours}) {
            std::sort(list->begin(), list->end());
            list->erase(std::unique(list->begin(), list->end()), list->end());
        }
    }
}

std::vector<Area> AreaBuilder::Build() {
    FindParts();
    std::vector<bool> seen(graph.HalfEdges(), false);
    for (uint32_t half = 0; half < graph.HalfEdges(); ++half) {
        if (!seen[half] && !graph.IsOpen(half)) TakeWalk(half, seen);
    }
    PlaceHoles();
    AddNeighbours();
    return std::move(areas);
}

}  // namespace

bool Area::Holds(Point point) const {
    if (!bounds.Contains(point) || !IsInRing(rings.front(), point)) return false;
    return std::none_of(rings.begin() + 1, rings.end(),
                        [&](const Ring& hole) { return IsInRing(hole, point); });
}

EnclosedAreas FindAreas(const BoundaryNet& net) {
    EnclosedAreas found;
    PlanarGraph graph(net);
    found.freeEnds = graph.OpenDangling();
    found.cutPieces = graph.OpenCuts();
    found.areas = AreaBuilder(net, graph).Build();
    return found;
}

}  // namespace vemrado::map
