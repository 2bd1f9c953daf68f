#include "clip.h"

#include <cmath>

namespace vemrado::draw {
namespace {

// The part of a segment inside the box as fractions of its length.
struct Inside {
    double from = 0;
    double to = 1;
    bool IsEmpty() const { return from > to; }
};

// Narrows to where start + t * change lies between low and high.
void Narrow(Inside& inside, double start, double change, double low, double high) {
    if (change == 0) {
        if (start < low || start > high) inside.to = -1;
        return;
    }
    double enters = (low - start) / change;
    double leaves = (high - start) / change;
    if (enters > leaves) std::swap(enters, leaves);
    inside.from = std::max(inside.from, enters);
    inside.to = std::min(inside.to, leaves);
}

Inside ClipSegment(Point a, Point b, const Box& box) {
    Inside inside;
    Narrow(inside, a.x, b.x - a.x, box.minX, box.maxX);
    Narrow(inside, a.y, b.y - a.y, box.minY, box.maxY);
    return inside;
}

Point Between(Point a, Point b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

}  // namespace

void ClipStroke(std::span<const Point> stroke, const Box& box,
                const std::function<void(std::span<const Point>, double lengthBefore)>& emit) {
    if (std::ranges::all_of(stroke, [&](Point p) { return box.Contains(p); })) {
        emit(stroke, 0);
        return;
    }
    std::vector<Point> part;
    double length = 0;
    double partBegins = 0;
    const auto finishPart = [&] {
        if (part.size() > 1) emit(part, partBegins);
        part.clear();
    };
    for (size_t i = 1; i < stroke.size(); i++) {
        const Point a = stroke[i - 1];
        const Point b = stroke[i];
        const double segment = std::hypot(b.x - a.x, b.y - a.y);
        const Inside inside = ClipSegment(a, b, box);
        if (!inside.IsEmpty()) {
            if (part.empty()) {
                part.push_back(Between(a, b, inside.from));
                partBegins = length + segment * inside.from;
            }
            part.push_back(inside.to == 1 ? b : Between(a, b, inside.to));
        }
        if (inside.IsEmpty() || inside.to < 1) finishPart();
        length += segment;
    }
    finishPart();
}

}  // namespace vemrado::draw
