#include "clearance.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace generate {

namespace {

bool IsSame(Point a, Point b) {
    return a.east == b.east && a.north == b.north;
}

double SquaredDistance(Point point, const Segment& segment) {
    const Point along = segment.to - segment.from;
    const double square = Dot(along, along);
    const double share = square > 0 ? std::clamp(Dot(point - segment.from, along) / square, 0.0, 1.0) : 0.0;
    const Point gap = point - (segment.from + along * share);
    return Dot(gap, gap);
}

// Most segments are not even near each other.
bool AreBoxesApart(const Segment& one, const Segment& other, double clearance) {
    const auto apart = [clearance](double a, double b, double c, double d) {
        return std::max(a, b) + clearance < std::min(c, d) || std::max(c, d) + clearance < std::min(a, b);
    };
    return apart(one.from.east, one.to.east, other.from.east, other.to.east) ||
           apart(one.from.north, one.to.north, other.from.north, other.to.north);
}

bool DoCross(const Segment& one, const Segment& other) {
    const auto parts = [](const Segment& line, Point a, Point b) {
        const Point along = line.to - line.from;
        return (Cross(along, a - line.from) > 0) != (Cross(along, b - line.from) > 0);
    };
    return parts(one, other.from, other.to) && parts(other, one.from, one.to);
}

// The segment turned so that it begins at a point, if that is one of its ends.
std::optional<Segment> From(Point start, const Segment& segment) {
    if (IsSame(segment.from, start)) return segment;
    if (IsSame(segment.to, start)) return Segment{segment.to, segment.from};
    return std::nullopt;
}

Segment EdgeOf(const Ring& ring, std::size_t i) {
    return {ring[i], ring[i + 1 < ring.size() ? i + 1 : 0]};
}

}  // namespace

bool AreClear(const Segment& one, const Segment& other, double clearance) {
    if (AreBoxesApart(one, other, clearance)) return true;
    const double least = clearance * clearance;
    for (const Segment& turned : {one, Segment{one.to, one.from}}) {
        const auto next = From(turned.from, other);
        if (!next) continue;
        return SquaredDistance(turned.to, *next) > least && SquaredDistance(next->to, turned) > least;
    }
    return !DoCross(one, other) && SquaredDistance(one.from, other) > least &&
           SquaredDistance(one.to, other) > least && SquaredDistance(other.from, one) > least &&
           SquaredDistance(other.to, one) > least;
}

bool IsSimple(const Ring& ring, double clearance) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k)
            if (!AreClear(EdgeOf(ring, i), EdgeOf(ring, k), clearance)) return false;
    }
    return ring.size() >= 3;
}

bool IsClearOf(const Segment& segment, const Ring& ring, double clearance) {
    for (std::size_t i = 0; i < ring.size(); ++i)
        if (!AreClear(segment, EdgeOf(ring, i), clearance)) return false;
    return true;
}

bool LiesInside(const Ring& ring, const Ring& outer, double clearance) {
    for (std::size_t i = 0; i < ring.size(); ++i)
        if (!IsClearOf(EdgeOf(ring, i), outer, clearance)) return false;
    return Contains(outer, ring[0]);
}

bool IsThin(const Ring& ring) {
    constexpr double leastWidth = 1.5;
    double around = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) around += Length(EdgeOf(ring, i).to - EdgeOf(ring, i).from);
    return 2 * Area(ring) < leastWidth * around;
}

// Between two corners that follow each other northwards every level line runs inside somewhere.
Point PointInside(const Ring& ring) {
    std::vector<double> levels;
    for (const Point& point : ring) levels.push_back(point.north);
    std::sort(levels.begin(), levels.end());
    Point best = ring[0];
    double most = 0;
    for (std::size_t i = 1; i < levels.size(); ++i) {
        const double north = (levels[i - 1] + levels[i]) / 2;
        std::vector<double> meets;
        for (std::size_t k = 0; k < ring.size(); ++k) {
            const auto [a, b] = EdgeOf(ring, k);
            if ((a.north > north) != (b.north > north))
                meets.push_back(a.east + (b.east - a.east) * (north - a.north) / (b.north - a.north));
        }
        std::sort(meets.begin(), meets.end());
        for (std::size_t k = 1; k < meets.size(); k += 2) {
            const Point middle{(meets[k - 1] + meets[k]) / 2, north};
            const double room = DistanceToOutline(ring, middle);
            if (room <= most) continue;
            most = room;
            best = middle;
        }
    }
    // Further away from the outline, as long as smaller steps help.
    for (double step = most; step > 0.1;) {
        const double before = most;
        for (const Point aside : {Point{step, 0}, Point{-step, 0}, Point{0, step}, Point{0, -step}}) {
            const double room = DistanceToOutline(ring, best + aside);
            if (room <= most || !Contains(ring, best + aside)) continue;
            most = room;
            best = best + aside;
        }
        if (most == before) step /= 2;
    }
    return best;
}

}  // namespace generate
