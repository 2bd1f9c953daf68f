#include "command_canvas.h"

#include <cmath>
#include <numbers>

namespace vemrado::web {
namespace {

enum Command { penCommand = 1, pathCommand, textCommand, fillCommand };

constexpr double thinnestLine = 0.6;  // pixels
constexpr size_t longestPath = 2000;  // points that are stroked together

int FaceNumber(const map::Face& face) {
    return (face.serif ? 4 : 0) + (face.bold ? 2 : 0) + (face.italic ? 1 : 0);
}

}  // namespace

void CommandCanvas::Clear() {
    commands.clear();
    texts.clear();
    penSet = nullptr;
}

void CommandCanvas::UsePen(const draw::Pen& pen, double lengthBefore) {
    if (penSet == &pen && penLengthBefore == lengthBefore && pathPoints < longestPath) return;
    penSet = &pen;
    penLengthBefore = lengthBefore;
    pathPoints = 0;
    double period = 0;
    for (const double length : pen.dashes) period += length * scale;
    const bool dashed = !pen.dashes.empty() && period > 2;
    Put(penCommand);
    Put(pen.colour);
    Put(std::max(pen.width * scale, thinnestLine));
    Put(dashed ? static_cast<double>(pen.dashes.size()) : 0);
    if (!dashed) return;
    for (const double length : pen.dashes) Put(length * scale);
    Put(std::fmod((pen.dashOffset + lengthBefore) * scale, period));
}

void CommandCanvas::Line(std::span<const draw::Point> points, const draw::Pen& pen, double lengthBefore) {
    if (points.size() < 2 || pen.invisible) return;
    UsePen(pen, pen.dashes.empty() ? 0 : lengthBefore);
    Put(pathCommand);
    const size_t countAt = commands.size();
    Put(0);
    size_t count = 0;
    const double nearby = 0.3 / scale;  // mm; shorter steps are not seen
    draw::Point last = points.front();
    for (size_t i = 0; i < points.size(); ++i) {
        const draw::Point point = points[i];
        const bool unseen = i > 0 && i + 1 < points.size() && std::abs(point.x - last.x) < nearby &&
                            std::abs(point.y - last.y) < nearby;
        if (unseen) continue;
        Put(point.x * scale);
        Put(point.y * scale);
        last = point;
        ++count;
    }
    commands[countAt] = static_cast<float>(count);
    pathPoints += count;
}

void CommandCanvas::Symbol(const draw::SymbolShape& shape, draw::Point at, double size, double rotation,
                           const draw::Pen& pen) {
    if (std::max(shape.bounds.Width(), shape.bounds.Height()) * size * scale < 1) return;
    UsePen(pen, 0);
    const double angle = rotation * std::numbers::pi / 180;
    const double cosine = std::cos(angle) * size * scale;
    const double sine = std::sin(angle) * size * scale;
    for (const auto& stroke : shape.strokes) {
        Put(pathCommand);
        Put(static_cast<double>(stroke.size()));
        for (const draw::Point point : stroke) {
            Put(at.x * scale + point.x * cosine - point.y * sine);
            Put(at.y * scale - point.x * sine - point.y * cosine);
        }
        pathPoints += stroke.size();
    }
}

void CommandCanvas::Text(const std::string& text, draw::Point at, const draw::TextStyle& style) {
    if (style.height * scale < 2) return;
    const double width =
        style.across == draw::Across::left ? 0 : draw::TextWidth(text, style.face, style.height);
    const double left = style.across == draw::Across::middle ? -width / 2 : -width;
    const double down = style.upright == draw::Upright::baseline ? 0
                        : style.upright == draw::Upright::middle ? style.height / 2
                                                                 : style.height;
    const double angle = -style.rotation * std::numbers::pi / 180;
    penSet = nullptr;
    Put(textCommand);
    Put((at.x + left * std::cos(angle) - down * std::sin(angle)) * scale);
    Put((at.y + left * std::sin(angle) + down * std::cos(angle)) * scale);
    Put(FaceNumber(style.face));
    Put(style.height / draw::capitalsPerEm * scale);
    Put(angle);
    Put(style.colour);
    for (const char c : text) texts += c == '\n' ? ' ' : c;
    texts += '\n';
}

void CommandCanvas::Fill(std::span<const draw::Point> outline, uint32_t colour) {
    penSet = nullptr;
    Put(fillCommand);
    Put(colour);
    Put(static_cast<double>(outline.size()));
    for (const draw::Point point : outline) {
        Put(point.x * scale);
        Put(point.y * scale);
    }
}

}  // namespace vemrado::web
