#include "geometry.h"

#include <algorithm>
#include <limits>
#include <numbers>

namespace generate {

Point Unit(Point a) {
    const double length = Length(a);
    return length > 0 ? a * (1 / length) : Point{1, 0};
}

Point Rotated(Point a, double radians) {
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    return {a.east * c - a.north * s, a.east * s + a.north * c};
}

double Area(const Ring& ring) {
    double twice = 0;
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        twice += Cross(ring[last] - ring[0], ring[i] - ring[0]);
    }
    return twice / 2;
}

Point Centroid(const Ring& ring) {
    double twice = 0;
    Point sum;
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        const Point a = ring[last] - ring[0];
        const Point b = ring[i] - ring[0];
        const double weight = Cross(a, b);
        twice += weight;
        sum = sum + (a + b) * weight;
    }
    if (std::abs(twice) < 1e-6) return ring[0];
    return ring[0] + sum * (1 / (3 * twice));
}

bool Contains(const Ring& ring, Point point) {
    bool inside = false;
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        const Point a = ring[last];
        const Point b = ring[i];
        if ((a.north > point.north) == (b.north > point.north)) continue;
        const double east = a.east + (b.east - a.east) * (point.north - a.north) / (b.north - a.north);
        if (point.east < east) inside = !inside;
    }
    return inside;
}

double DistanceToOutline(const Ring& ring, Point point) {
    double best = std::numeric_limits<double>::max();
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        const Point edge = ring[i] - ring[last];
        const double square = Dot(edge, edge);
        double share = square > 0 ? Dot(point - ring[last], edge) / square : 0;
        share = std::clamp(share, 0.0, 1.0);
        const Point gap = point - (ring[last] + edge * share);
        best = std::min(best, Dot(gap, gap));
    }
    return std::sqrt(best);
}

double PathLength(const Path& path) {
    double length = 0;
    for (std::size_t i = 1; i < path.size(); ++i) length += Length(path[i] - path[i - 1]);
    return length;
}

namespace {

// Edges' directions taken four times, so that right angles fall together, weighted by the edges' lengths.
Point DominantDirection(const Ring& ring) {
    Point sum;
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        const Point edge = ring[i] - ring[last];
        const double length = Length(edge);
        if (length < 1e-6) continue;
        const Point once = edge * (1 / length);
        const Point twice{once.east * once.east - once.north * once.north, 2 * once.east * once.north};
        const Point four{twice.east * twice.east - twice.north * twice.north, 2 * twice.east * twice.north};
        sum = sum + four * (length * length);
    }
    const double angle = std::atan2(sum.north, sum.east) / 4;
    return {std::cos(angle), std::sin(angle)};
}

}  // namespace

Frame FrameOf(const Ring& ring) {
    const Point u = DominantDirection(ring);
    const Point v = Left(u);
    double lowU = std::numeric_limits<double>::max();
    double highU = std::numeric_limits<double>::lowest();
    double lowV = lowU;
    double highV = highU;
    for (const Point& point : ring) {
        const Point local = point - ring[0];
        const double alongU = Dot(local, u);
        const double alongV = Dot(local, v);
        lowU = std::min(lowU, alongU);
        highU = std::max(highU, alongU);
        lowV = std::min(lowV, alongV);
        highV = std::max(highV, alongV);
    }
    const Point center = ring[0] + u * ((lowU + highU) / 2) + v * ((lowV + highV) / 2);
    const double extentU = highU - lowU;
    const double extentV = highV - lowV;
    if (extentU >= extentV) return {center, u, v, extentU, extentV};
    return {center, v, u * -1.0, extentV, extentU};
}

bool FindChord(const Ring& ring, Point inside, Point direction, Chord& chord) {
    chord.ahead.distance = std::numeric_limits<double>::max();
    chord.behind.distance = std::numeric_limits<double>::lowest();
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point a = ring[i] - inside;
        const Point b = ring[i + 1 < ring.size() ? i + 1 : 0] - inside;
        const double sideA = Cross(direction, a);
        const double sideB = Cross(direction, b);
        if ((sideA < 0) == (sideB < 0)) continue;
        const double share = sideA / (sideA - sideB);
        const Point at = a + (b - a) * share;
        const double distance = Dot(at, direction);
        if (distance >= 0 && distance < chord.ahead.distance) chord.ahead = {i, share, distance, at + inside};
        if (distance < 0 && distance > chord.behind.distance)
            chord.behind = {i, share, distance, at + inside};
    }
    return chord.ahead.distance < std::numeric_limits<double>::max() &&
           chord.behind.distance > std::numeric_limits<double>::lowest();
}

namespace {

Ring PartBetween(const Ring& ring, const Crossing& from, const Crossing& to) {
    Ring part;
    part.push_back(from.at);
    std::size_t i = from.edge;
    while (i != to.edge) {
        i = i + 1 < ring.size() ? i + 1 : 0;
        part.push_back(ring[i]);
    }
    part.push_back(to.at);
    return part;
}

}  // namespace

Ring LeftOf(const Ring& ring, const Chord& chord) {
    return PartBetween(ring, chord.ahead, chord.behind);
}

Ring RightOf(const Ring& ring, const Chord& chord) {
    return PartBetween(ring, chord.behind, chord.ahead);
}

namespace {

// Where the lines of two edges meet after each was moved inwards by its margin.
Point MeetingPoint(const Ring& ring, const std::vector<double>& margins, std::size_t in, std::size_t out) {
    const Point inStart = ring[in];
    const Point inEnd = ring[in + 1 < ring.size() ? in + 1 : 0];
    const Point outStart = ring[out];
    const Point outEnd = ring[out + 1 < ring.size() ? out + 1 : 0];
    const Point inUnit = Unit(inEnd - inStart);
    const Point outUnit = Unit(outEnd - outStart);
    const double turn = Cross(inUnit, outUnit);
    const Point inMoved = inEnd + Left(inUnit) * margins[in];
    const Point outMoved = outStart + Left(outUnit) * margins[out];
    if (std::abs(turn) < 0.15) return Middle(inMoved, outMoved);
    return inMoved + inUnit * (Cross(outMoved - inMoved, outUnit) / turn);
}

}  // namespace

Ring Inset(const Ring& ring, const std::vector<double>& margins, std::vector<std::size_t>& kept) {
    kept.resize(ring.size());
    for (std::size_t i = 0; i < ring.size(); ++i) kept[i] = i;
    Ring moved;
    while (kept.size() >= 3) {
        moved.clear();
        for (std::size_t i = 0; i < kept.size(); ++i) {
            moved.push_back(MeetingPoint(ring, margins, kept[i > 0 ? i - 1 : kept.size() - 1], kept[i]));
        }
        // The edge that is turned round most goes, and its neighbours meet instead.
        std::size_t worst = kept.size();
        double most = 0;
        for (std::size_t i = 0; i < kept.size(); ++i) {
            const Point edge = ring[kept[i] + 1 < ring.size() ? kept[i] + 1 : 0] - ring[kept[i]];
            const double length = Dot(moved[i + 1 < kept.size() ? i + 1 : 0] - moved[i], Unit(edge));
            if (length > most) continue;
            most = length;
            worst = i;
        }
        if (worst == kept.size()) return moved;
        kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(worst));
    }
    return {};
}

Path Bent(Point from, Point to, const std::vector<double>& offsets) {
    const Point side = Left(Unit(to - from));
    const double steps = static_cast<double>(offsets.size() + 1);
    Path path;
    path.reserve(offsets.size() + 2);
    path.push_back(from);
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        path.push_back(from + (to - from) * (static_cast<double>(i + 1) / steps) + side * offsets[i]);
    }
    path.push_back(to);
    return path;
}

double ReadableGons(Point direction) {
    double gons = std::atan2(direction.north, direction.east) * (200 / std::numbers::pi);
    if (gons <= -100) gons += 200;
    if (gons > 100) gons -= 200;
    return gons < 0 ? gons + 400 : gons;
}

}  // namespace generate
