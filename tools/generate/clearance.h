// The distance that boundaries keep from each other. Boundaries that keep it do not cross, and they still do
// not once their points have been rounded to the decimals of the file.

#pragma once

#include "geometry.h"

namespace generate {

// In metres; rounding moves a point by at most 7 mm.
constexpr double leastClearance = 0.05;

struct Segment {
    Point from;
    Point to;
};

// Segments that share an end point are clear when the other ends keep the clearance from the other segment;
// others when no point of one is nearer to the other.
bool AreClear(const Segment& one, const Segment& other, double clearance = leastClearance);

// Whether all edges of a ring are clear of each other.
bool IsSimple(const Ring& ring, double clearance = leastClearance);

// Whether a segment is clear of all edges of a ring.
bool IsClearOf(const Segment& segment, const Ring& ring, double clearance = leastClearance);

// Whether a ring lies inside another one, clear of its edges.
bool LiesInside(const Ring& ring, const Ring& outer, double clearance);

// Whether a ring is hardly more than a line: narrower than a metre and a half on average.
bool IsThin(const Ring& ring);

// A point inside a simple ring, as far from its outline as a few tries find one.
Point PointInside(const Ring& ring);

}  // namespace generate
