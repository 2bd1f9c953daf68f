#include "legend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <span>
#include <utility>

#include "clip.h"
#include "words.h"

namespace vemrado::draw {
namespace {

constexpr double columnWidth = 66;  // mm, times the sheet's size, as what follows
constexpr double sampleWidth = 16;
constexpr double headingHeight = 9;
constexpr double rowHeight = 5.5;
constexpr double tallestSymbol = 9;  // mm; higher ones are drawn smaller
constexpr double gap = 3;
constexpr double headingText = 2.6;
constexpr double nameText = 1.9;

constexpr double smallestShare = 0.6;  // of its place that a symbol of a small picture takes
constexpr double inkWidth = 0.18;

Pen Enlarged(const Pen& pen, double by) {
    Pen larger = pen;
    larger.id = "legend-" + pen.id;
    larger.width *= by;
    for (double& length : larger.dashes) length *= by;
    larger.dashOffset *= by;
    return larger;
}

std::set<uint32_t> UsedLineStyles(const Scene& scene, const Box& box) {
    std::set<uint32_t> used;
    for (const auto& [number, layer] : scene.layers) {
        if (layer.change) continue;
        for (const Stroke& stroke : layer.strokes) {
            if (used.contains(stroke.style)) continue;
            const std::span<const Point> points(layer.points.data() + stroke.first, stroke.count);
            ClipStroke(points, box, [&](std::span<const Point>, double) { used.insert(stroke.style); });
        }
    }
    return used;
}

std::set<uint32_t> UsedSymbolStyles(const Scene& scene, const Box& box) {
    std::set<uint32_t> used;
    for (const auto& [number, layer] : scene.layers) {
        for (const PlacedSymbol& symbol : layer.symbols) {
            if (box.Contains(symbol.point)) used.insert(symbol.style);
        }
    }
    return used;
}

template <typename Style>
std::string NameOf(const Style& style) {
    return style.name.empty() ? std::to_string(style.code) : style.name;
}

}  // namespace

Legend::Legend(const Scene& mapScene, const Box& box) : scene(mapScene) {
    AddChanges();
    AddLineTypes(box);
    AddSymbols(box);
}

// All of them wherever they are: that a colour means something holds in an empty part of the map too.
void Legend::AddChanges() {
    bool any = false;
    for (const auto& [number, layer] : scene.layers) {
        if (!layer.change) continue;
        if (!std::exchange(any, true)) rows.push_back({HostWords().changesHeading, nullptr, nullptr});
        rows.push_back({layer.name, &scene.lineStyles[*layer.change].pen, nullptr});
    }
}

void Legend::AddLineTypes(const Box& box) {
    std::vector<const LineStyle*> used;
    const Pen* other = nullptr;
    for (const uint32_t number : UsedLineStyles(scene, box)) {
        const LineStyle& style = scene.lineStyles[number];
        if (style.known) {
            used.push_back(&style);
        } else if (!other) {
            other = &style.pen;
        }
    }
    if (used.empty() && !other) return;
    std::ranges::sort(used, {}, &LineStyle::code);
    rows.push_back({HostWords().lineTypes, nullptr, nullptr});
    for (const LineStyle* style : used) {
        rows.push_back({NameOf(*style), &style->pen, nullptr});
    }
    if (other) rows.push_back({HostWords().otherLines, other, nullptr});
}

void Legend::AddSymbols(const Box& box) {
    std::vector<const SymbolStyle*> used;
    for (const uint32_t number : UsedSymbolStyles(scene, box)) used.push_back(&scene.symbolStyles[number]);
    if (used.empty()) return;
    std::ranges::sort(used, {}, &SymbolStyle::code);
    rows.push_back({HostWords().symbols, nullptr, nullptr});
    for (const SymbolStyle* style : used) {
        rows.push_back({NameOf(*style), nullptr, &style->shape});
    }
}

// Enlarged, but no larger than its place. In a small picture a symbol must also be large enough to be seen.
double Legend::SampleScale(const SymbolShape& shape) const {
    const double larger = std::max(1.0, enlargement);
    const double largest = std::max(shape.bounds.Width() / (sampleWidth * larger),
                                    shape.bounds.Height() / (tallestSymbol * larger));
    if (largest <= 0) return enlargement;
    const double wanted = enlargement > 1 ? std::max(enlargement, smallestShare / largest) : 1;
    return std::min(wanted, 1 / largest);
}

double Legend::RowHeight(const Row& row) const {
    if (!row.pen && !row.shape) return headingHeight * size;
    const double drawn = row.shape ? row.shape->bounds.Height() * SampleScale(*row.shape) + 1.5 * size : 0;
    return std::max(rowHeight * size, drawn);
}

void Legend::LayOut(double available, double sheetSize, double sampleEnlargement) {
    size = sheetSize;
    enlargement = sampleEnlargement;
    ink.id = "legend-ink";
    ink.width = inkWidth * enlargement;
    pens.clear();
    for (const Row& row : rows) pens.push_back(row.pen ? Enlarged(*row.pen, enlargement) : Pen());
    columns = 1;
    height = 0;
    double y = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        Row& row = rows[i];
        // A heading does not stand alone at the foot of a column.
        const bool heading = !row.pen && !row.shape;
        const double needed = RowHeight(row) + (heading && i + 1 < rows.size() ? RowHeight(rows[i + 1]) : 0);
        if (y > 0 && y + needed > available) {
            ++columns;
            y = 0;
        }
        row.column = columns - 1;
        row.y = y;
        y += RowHeight(row);
        height = std::max(height, y);
    }
}

void Legend::LayOutInWidth(double available, double sheetSize, double sampleEnlargement) {
    const double column = (columnWidth + gap) * sheetSize;
    const auto most = static_cast<size_t>(std::max(1.0, std::floor((available + gap * sheetSize) / column)));
    constexpr double endless = 1e12;
    LayOut(endless, sheetSize, sampleEnlargement);
    constexpr double step = 1.05;
    double tallest = height / static_cast<double>(most);
    for (LayOut(tallest, sheetSize, sampleEnlargement); columns > most; tallest *= step)
        LayOut(tallest, sheetSize, sampleEnlargement);
}

double Legend::Width() const {
    return (static_cast<double>(columns) * (columnWidth + gap) - gap) * size;
}

double Legend::Height() const {
    return height;
}

void Legend::DefineStyles(Canvas& canvas) const {
    canvas.DefinePen(ink);
    for (const Pen& pen : pens) {
        if (enlargement > 1 && !pen.id.empty()) canvas.DefinePen(pen);
    }
}

void Legend::Draw(Canvas& canvas, Point corner) const {
    canvas.BeginGroup("legend", HostWords().legend);
    for (const Row& row : rows) DrawRow(canvas, row, corner);
    canvas.EndGroup();
}

void Legend::DrawRow(Canvas& canvas, const Row& row, Point corner) const {
    const double x = corner.x + static_cast<double>(row.column) * (columnWidth + gap) * size;
    const double middle = corner.y + row.y + RowHeight(row) / 2;
    TextStyle style;
    style.upright = Upright::middle;
    if (!row.pen && !row.shape) {
        style.height = headingText * size;
        style.face.bold = true;
        canvas.Text(row.text, {x, middle}, style);
        return;
    }
    if (row.pen) {
        const std::array<Point, 2> line{Point{x, middle}, Point{x + sampleWidth * size, middle}};
        canvas.Line(line, enlargement > 1 ? pens[static_cast<size_t>(&row - rows.data())] : *row.pen, 0);
    } else {
        // In the middle of its place, wherever its insertion point is; upright, though mirrored, in a
        // mirrored map.
        const double scale = SampleScale(*row.shape);
        const double toMiddle = scene.mirrored ? -scale : scale;
        const Box& bounds = row.shape->bounds;
        canvas.Symbol(*row.shape,
                      {x + sampleWidth * size / 2 - (bounds.minX + bounds.maxX) / 2 * toMiddle,
                       middle + (bounds.minY + bounds.maxY) / 2 * toMiddle},
                      scale, scene.mirrored ? 180 : 0, ink);
    }
    const double textLeft = (sampleWidth + gap) * size;
    style.height = nameText * size;
    canvas.Text(Fitted(row.text, style, columnWidth * size - textLeft), {x + textLeft, middle}, style);
}

std::string Fitted(const std::string& text, const TextStyle& style, double width) {
    if (TextWidth(text, style.face, style.height) <= width) return text;
    std::string cut = text;
    while (!cut.empty() && TextWidth(cut + "…", style.face, style.height) > width) {
        while (!cut.empty() && (static_cast<unsigned char>(cut.back()) & 0xC0) == 0x80) cut.pop_back();
        if (!cut.empty()) cut.pop_back();
    }
    return cut + "…";
}

}  // namespace vemrado::draw
