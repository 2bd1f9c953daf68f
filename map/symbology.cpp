#include "map/symbology.h"

#include <algorithm>
#include <cmath>

#include "client/text_encoding.h"

namespace vemrado::map {
namespace {

constexpr double widestLine = 100;       // mm; more is no width of a line
constexpr double shortestPeriod = 0.05;  // mm; a shorter pattern looks continuous at any resolution
constexpr double farthest = 1e4;         // mm; no symbol reaches farther from its point

struct Stretch {
    double length;
    bool drawn;
};

// Neighbours of one kind are joined.
std::vector<Stretch> JoinedStretches(std::span<const double> lengths) {
    std::vector<Stretch> stretches;
    bool drawn = false;
    for (const double length : lengths) {
        drawn = !drawn;
        if (!std::isfinite(length) || length < 0) continue;
        if (!stretches.empty() && stretches.back().drawn == drawn) {
            stretches.back().length += length;
        } else {
            stretches.push_back({length, drawn});
        }
    }
    return stretches;
}

std::string Utf8(const char* name) {
    return client::TextDecoder(client::Encoding::windows1250).Decode(name);
}

}  // namespace

void SetDashes(Pen& pen, std::span<const double> lengths) {
    std::vector<Stretch> stretches = JoinedStretches(lengths);
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

std::optional<Pen> FindPen(CVKMDetails& importer, int code) {
    Pen pen;
    unsigned int colour = 0;
    double width = 0;
    int dashPattern = 0;
    if (importer.GetLineStyle(code, &colour, &width, &dashPattern) == 0) return std::nullopt;
    pen.colour = colour;
    pen.width = width > 0 && width <= widestLine ? width : Pen::defaultWidth;
    const double* lengths = nullptr;
    const int count = importer.GetLineDashes(code, &lengths);
    SetDashes(pen, {lengths, static_cast<size_t>(count)});
    return pen;
}

std::optional<SymbolDrawing> FindDrawing(CVKMDetails& importer, int code) {
    const VkmSymbolPoint* points = nullptr;
    const int count = importer.GetSymbolDrawing(code, &points);
    if (count < 0) return std::nullopt;
    SymbolDrawing drawing;
    drawing.bounds.Add(Point{0, 0});
    for (const VkmSymbolPoint& point : std::span(points, static_cast<size_t>(count))) {
        const Point at{point.x, point.y};
        if (!(std::abs(at.x) <= farthest && std::abs(at.y) <= farthest)) break;
        if (point.draws == 0 || drawing.strokes.empty()) drawing.strokes.emplace_back();
        drawing.strokes.back().push_back(at);
        drawing.bounds.Add(at);
        drawing.reach = std::max({drawing.reach, std::abs(at.x), std::abs(at.y)});
    }
    std::erase_if(drawing.strokes, [](const auto& stroke) { return stroke.size() < 2; });
    return drawing;
}

std::vector<CodeEntry> LineCodes(CVKMDetails& importer) {
    std::vector<CodeEntry> codes(static_cast<size_t>(importer.GetLineCodeCount()));
    const char* name = "";
    for (int i = 0; CodeEntry & entry : codes) {
        importer.GetLineCode(i++, &entry.code, &entry.number, &name);
        entry.name = Utf8(name);
    }
    return codes;
}

std::vector<CodeEntry> SymbolCodes(CVKMDetails& importer) {
    std::vector<CodeEntry> codes(static_cast<size_t>(importer.GetSymbolCodeCount()));
    const char* name = "";
    for (int i = 0; CodeEntry & entry : codes) {
        importer.GetSymbolCode(i++, &entry.code, &entry.number, &name);
        entry.name = Utf8(name);
    }
    return codes;
}

std::string LineCodeName(CVKMDetails& importer, int code) {
    return Utf8(importer.GetLineCodeName(code));
}

std::string SymbolCodeName(CVKMDetails& importer, int code) {
    return Utf8(importer.GetSymbolCodeName(code));
}

}  // namespace vemrado::map
