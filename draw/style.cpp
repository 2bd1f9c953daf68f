#include "style.h"

#include <cmath>
#include <utility>

#include "zrv320/zrv320.h"

namespace vemrado::draw {
namespace {

constexpr double shortestPeriod = 0.05;  // mm; a shorter pattern looks continuous at any resolution
constexpr uint8_t endOfList = '@';
constexpr double farthest = 1e4;  // mm; no symbol reaches farther from its point

struct Stretch {
    double length;
    bool drawn;
};

std::vector<Stretch> JoinedStretches(const PatternElement* elements) {
    std::vector<Stretch> stretches;
    for (; elements->code != endOfList; elements++) {
        const double length = elements->x;
        const bool drawn = elements->code == 1;
        if (!std::isfinite(length) || length < 0) continue;
        if (!stretches.empty() && stretches.back().drawn == drawn) {
            stretches.back().length += length;
        } else {
            stretches.push_back({length, drawn});
        }
    }
    return stretches;
}

}  // namespace

void SetDashes(Pen& pen, const PatternElement* elements) {
    if (!elements) return;
    std::vector<Stretch> stretches = JoinedStretches(elements);
    if (stretches.empty()) return;
    if (stretches.size() == 1) {
        pen.invisible = !stretches[0].drawn;
        return;
    }
    double offset = 0;
    if (stretches.size() % 2 == 1) {
        // First and last are of one kind and meet where the pattern repeats.
        offset = stretches.back().length;
        stretches.front().length += offset;
        stretches.pop_back();
    }
    if (!stretches.front().drawn) {
        // Dash lists begin with a drawn stretch.
        const double gap = stretches.front().length;
        stretches.erase(stretches.begin());
        stretches.push_back({gap, false});
        double period = 0;
        for (const Stretch& stretch : stretches) period += stretch.length;
        offset = period - gap + offset;
    }
    double period = 0;
    for (Stretch& stretch : stretches) {
        if (stretch.drawn && stretch.length == 0) stretch.length = pen.width;
        period += stretch.length;
    }
    if (!std::isfinite(period) || period < shortestPeriod) return;
    for (const Stretch& stretch : stretches) pen.dashes.push_back(stretch.length);
    pen.dashOffset = offset;
}

SymbolShape MakeSymbolShape(std::string id, const PatternElement* elements) {
    SymbolShape shape;
    shape.id = std::move(id);
    shape.bounds.Add(Point{0, 0});
    if (!elements) return shape;
    Point at;
    bool penDown = false;
    for (bool first = true; elements->code != endOfList; elements++, first = false) {
        at = first ? Point{elements->x, elements->y} : Point{at.x + elements->x, at.y + elements->y};
        if (!(std::abs(at.x) <= farthest && std::abs(at.y) <= farthest)) break;
        penDown = elements->code != 0 && !shape.strokes.empty();
        if (!penDown) shape.strokes.emplace_back();
        shape.strokes.back().push_back(at);
        shape.bounds.Add(at);
    }
    std::erase_if(shape.strokes, [](const auto& stroke) { return stroke.size() < 2; });
    return shape;
}

}  // namespace vemrado::draw
