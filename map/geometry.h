// Points and boxes.

#pragma once

#include <algorithm>
#include <limits>

namespace vemrado::map {

// On the ground in metres with y up, on paper in millimetres with y down.
struct Point {
    double x = 0;
    double y = 0;
};

// Empty until a point or another box is added.
struct Box {
    double minX = std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    bool IsEmpty() const { return !(minX <= maxX && minY <= maxY); }
    double Width() const { return maxX - minX; }
    double Height() const { return maxY - minY; }
    Point Middle() const { return {(minX + maxX) / 2, (minY + maxY) / 2}; }
    bool Contains(Point p) const { return p.x >= minX && p.x <= maxX && p.y >= minY && p.y <= maxY; }
    bool Meets(const Box& other) const {
        return minX <= other.maxX && maxX >= other.minX && minY <= other.maxY && maxY >= other.minY;
    }
    void Add(Point p) {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }
    void Add(const Box& other) {
        minX = std::min(minX, other.minX);
        minY = std::min(minY, other.minY);
        maxX = std::max(maxX, other.maxX);
        maxY = std::max(maxY, other.maxY);
    }
    Box Grown(double by) const { return {minX - by, minY - by, maxX + by, maxY + by}; }
};

}  // namespace vemrado::map
