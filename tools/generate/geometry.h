// Plane geometry in metres: east and north of the map's origin. Rings are counter-clockwise and not closed by
// a repeated point; edge i runs from point i to the next one.

#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace generate {

struct Point {
    double east = 0;
    double north = 0;
};

inline Point operator+(Point a, Point b) {
    return {a.east + b.east, a.north + b.north};
}
inline Point operator-(Point a, Point b) {
    return {a.east - b.east, a.north - b.north};
}
inline Point operator*(Point a, double factor) {
    return {a.east * factor, a.north * factor};
}
inline double Dot(Point a, Point b) {
    return a.east * b.east + a.north * b.north;
}
inline double Cross(Point a, Point b) {
    return a.east * b.north - a.north * b.east;
}
inline double Length(Point a) {
    return std::sqrt(Dot(a, a));
}
inline Point Left(Point a) {
    return {-a.north, a.east};
}
inline Point Middle(Point a, Point b) {
    return (a + b) * 0.5;
}
// The direction of a; east for a zero vector.
Point Unit(Point a);
Point Rotated(Point a, double radians);

using Ring = std::vector<Point>;
using Path = std::vector<Point>;

double Area(const Ring& ring);
Point Centroid(const Ring& ring);
bool Contains(const Ring& ring, Point point);
double DistanceToOutline(const Ring& ring, Point point);
double PathLength(const Path& path);

// The box along the ring's dominant directions, right angles taken as one direction.
struct Frame {
    Point center;
    Point along;    // unit vector of the longer side
    Point across;   // unit vector of the shorter side, left of along
    double length;  // extent along
    double width;   // extent across
};
Frame FrameOf(const Ring& ring);

// Where a line through a point inside a ring meets the outline first, ahead and behind.
struct Crossing {
    std::size_t edge = 0;
    double share = 0;  // of the edge, from its start
    double distance = 0;
    Point at;
};
struct Chord {
    Crossing ahead;
    Crossing behind;
};
// False when the line does not leave the ring on both sides.
bool FindChord(const Ring& ring, Point inside, Point direction, Chord& chord);

// The part of a ring on the left of a chord's direction, and the other one.
Ring LeftOf(const Ring& ring, const Chord& chord);
Ring RightOf(const Ring& ring, const Chord& chord);

// The ring moved inwards, each edge by its own margin (negative: outwards). Edges that would turn round are
// left out; kept lists the original edge of every edge of the result. Empty when nothing is left.
Ring Inset(const Ring& ring, const std::vector<double>& margins, std::vector<std::size_t>& kept);

// A smooth path between two points that swings to both sides; offsets are in metres at even spacing.
Path Bent(Point from, Point to, const std::vector<double>& offsets);

// Direction of a text along a vector, in gons counter-clockwise from east, turned so that it reads from the
// south or the east: 0 to 100 and 300 to 400.
double ReadableGons(Point direction);

}  // namespace generate
