#include "stray_points.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vemrado::draw {
namespace {

constexpr size_t fewestPoints = 8;
constexpr size_t mostSampled = 100000;
constexpr size_t oneIn = 200;         // so many of all points may be stray
constexpr double farOff = 20;         // times the distance that the others reach from the middle
constexpr double smallestReach = 10;  // m

template <class Take>
void ForEachPoint(const Scene& scene, Take take) {
    for (const auto& [number, layer] : scene.layers) {
        for (const Point point : layer.points) take(point);
        for (const PlacedSymbol& symbol : layer.symbols) take(symbol.point);
        for (const PlacedText& text : layer.texts) take(text.point);
    }
}

// Every point of a small map, points all over a large one.
std::vector<Point> SampleOf(const Scene& scene) {
    size_t count = 0;
    ForEachPoint(scene, [&](Point) { ++count; });
    const size_t step = count / mostSampled + 1;
    std::vector<Point> points;
    points.reserve(count / step + 1);
    size_t next = 0;
    ForEachPoint(scene, [&](Point point) {
        if (next++ % step == 0) points.push_back(point);
    });
    return points;
}

double Median(std::vector<Point>& points, double Point::*axis) {
    const auto middle = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
    std::ranges::nth_element(points, middle, {}, axis);
    return (*middle).*axis;
}

double DistanceTo(const Box& box, Point point) {
    return std::hypot(std::max({box.minX - point.x, 0.0, point.x - box.maxX}),
                      std::max({box.minY - point.y, 0.0, point.y - box.maxY}));
}

}  // namespace

std::optional<StrayPoints> FindStrayPoints(const Scene& scene) {
    std::vector<Point> points = SampleOf(scene);
    if (points.size() < fewestPoints) return std::nullopt;
    const Point middle{Median(points, &Point::x), Median(points, &Point::y)};
    const auto distance = [&](const Point& point) {
        return std::max(std::abs(point.x - middle.x), std::abs(point.y - middle.y));
    };
    const size_t most = std::max<size_t>(points.size() / oneIn, 1);
    const auto lastOfRest = points.end() - static_cast<std::ptrdiff_t>(most) - 1;
    std::ranges::nth_element(points, lastOfRest, {}, distance);
    const double reach = farOff * std::max(distance(*lastOfRest), smallestReach);

    StrayPoints stray;
    ForEachPoint(scene, [&](Point point) {
        if (distance(point) <= reach) stray.rest.Add(point);
    });
    ForEachPoint(scene, [&](Point point) {
        if (distance(point) <= reach) return;
        ++stray.count;
        const double away = DistanceTo(stray.rest, point);
        if (away <= stray.distance) return;
        stray.distance = away;
        stray.farthest = point;
    });
    return stray.count > 0 ? std::optional(stray) : std::nullopt;
}

}  // namespace vemrado::draw
