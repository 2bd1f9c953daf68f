#include "stray_points.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vemrado::draw {
namespace {

constexpr size_t fewestPoints = 8;
constexpr size_t oneIn = 200;         // so many of all points may be stray
constexpr double farOff = 20;         // times the distance that the others reach from the middle
constexpr double smallestReach = 10;  // m

std::vector<Point> PointsOf(const Scene& scene) {
    std::vector<Point> points;
    for (const auto& [number, layer] : scene.layers) {
        points.insert(points.end(), layer.points.begin(), layer.points.end());
        for (const PlacedSymbol& symbol : layer.symbols) points.push_back(symbol.point);
        for (const PlacedText& text : layer.texts) points.push_back(text.point);
    }
    return points;
}

double Median(std::vector<Point>& points, double Point::*axis) {
    const auto middle = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
    std::ranges::nth_element(points, middle, {}, axis);
    return (*middle).*axis;
}

}  // namespace

std::optional<StrayPoints> FindStrayPoints(const Scene& scene) {
    std::vector<Point> points = PointsOf(scene);
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
    double farthest = 0;
    for (const Point& point : points) {
        if (distance(point) <= reach) {
            stray.rest.Add(point);
        } else {
            ++stray.count;
            farthest = std::max(farthest, std::hypot(point.x - middle.x, point.y - middle.y));
        }
    }
    stray.distance = farthest;
    return stray.count > 0 ? std::optional(stray) : std::nullopt;
}

}  // namespace vemrado::draw
