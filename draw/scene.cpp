#include "scene.h"

#include <array>
#include <cmath>
#include <numbers>

namespace vemrado::draw {
namespace {

// Adds a box around a point, turned by degrees counter-clockwise about that point; sizes in the box's own
// unit.
void AddTurned(Box& extent, Point at, const Box& box, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const std::array<Point, 4> corners{Point{box.minX, box.minY}, Point{box.maxX, box.minY},
                                       Point{box.maxX, box.maxY}, Point{box.minX, box.maxY}};
    for (const Point corner : corners) {
        extent.Add(
            Point{at.x + corner.x * cosine - corner.y * sine, at.y + corner.x * sine + corner.y * cosine});
    }
}

Box Scaled(const Box& box, double by) {
    return {box.minX * by, box.minY * by, box.maxX * by, box.maxY * by};
}

// Around the insertion point in millimetres, with the descenders.
Box TextBox(const PlacedText& text) {
    const TextStyle& style = text.style;
    const double width = TextWidth(text.text, style.face, style.height);
    const double left = style.across == Across::left     ? 0
                        : style.across == Across::middle ? -width / 2
                                                         : -width;
    const double baseline = style.upright == Upright::baseline ? 0
                            : style.upright == Upright::middle ? -style.height / 2
                                                               : -style.height;
    constexpr double descent = 0.33;  // of the height of a capital letter
    constexpr double ascent = 1.3;    // with an accent above it
    return {left, baseline - descent * style.height, left + width, baseline + ascent * style.height};
}

}  // namespace

Box Scene::ExtentOf(const PlacedText& text) const {
    Box extent;
    AddTurned(extent, text.point, Scaled(TextBox(text), 1 / MillimetresPerMetre()), text.style.rotation);
    return extent;
}

Box Scene::Extent() const {
    Box extent;
    const double metresPerMillimetre = 1 / MillimetresPerMetre();
    for (const auto& [number, layer] : layers) {
        for (const Point point : layer.points) extent.Add(point);
        for (const PlacedSymbol& symbol : layer.symbols) {
            const Box& bounds = symbolStyles[symbol.style].shape.bounds;
            AddTurned(extent, symbol.point, Scaled(bounds, symbol.scale * metresPerMillimetre),
                      symbol.rotation);
        }
        for (const PlacedText& text : layer.texts) {
            const Box box = ExtentOf(text);
            extent.Add(Point{box.minX, box.minY});
            extent.Add(Point{box.maxX, box.maxY});
        }
    }
    return extent;
}

}  // namespace vemrado::draw
