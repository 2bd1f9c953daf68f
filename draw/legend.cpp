#include "legend.h"

#include <array>
#include <set>
#include <span>

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

const Pen& Ink() {
    static const Pen pen = [] {
        Pen ink;
        ink.id = "legend-ink";
        ink.width = 0.18;
        return ink;
    }();
    return pen;
}

// How much smaller a symbol is drawn in the legend.
double LegendScale(const SymbolShape& shape) {
    const double largest =
        std::max(shape.bounds.Width() / sampleWidth, shape.bounds.Height() / tallestSymbol);
    return largest > 1 ? 1 / largest : 1;
}

std::set<uint32_t> UsedLineStyles(const Scene& scene, const Box& box) {
    std::set<uint32_t> used;
    for (const auto& [number, layer] : scene.layers) {
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

template <typename Entry>
std::string NameOf(const Entry* entry, int code) {
    return entry && !entry->name.empty() ? entry->name : std::to_string(code);
}

}  // namespace

Legend::Legend(const Scene& mapScene, const client::SymbologyIndex& index, const Box& box) : scene(mapScene) {
    AddLineTypes(index, box);
    AddSymbols(index, box);
}

void Legend::AddLineTypes(const client::SymbologyIndex& index, const Box& box) {
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
        rows.push_back({NameOf(index.FindLine(style->code), style->code), &style->pen, nullptr});
    }
    if (other) rows.push_back({HostWords().otherLines, other, nullptr});
}

void Legend::AddSymbols(const client::SymbologyIndex& index, const Box& box) {
    std::vector<const SymbolStyle*> used;
    for (const uint32_t number : UsedSymbolStyles(scene, box)) used.push_back(&scene.symbolStyles[number]);
    if (used.empty()) return;
    std::ranges::sort(used, {}, &SymbolStyle::code);
    rows.push_back({HostWords().symbols, nullptr, nullptr});
    for (const SymbolStyle* style : used) {
        rows.push_back({NameOf(index.FindSymbol(style->code), style->code), nullptr, &style->shape});
    }
}

double Legend::RowHeight(const Row& row) const {
    if (!row.pen && !row.shape) return headingHeight * size;
    const double drawn = row.shape ? row.shape->bounds.Height() * LegendScale(*row.shape) + 1.5 : 0;
    return std::max(rowHeight * size, drawn);
}

void Legend::LayOut(double available, double sheetSize) {
    size = sheetSize;
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

double Legend::Width() const {
    return (static_cast<double>(columns) * (columnWidth + gap) - gap) * size;
}

double Legend::Height() const {
    return height;
}

void Legend::DefineStyles(Canvas& canvas) const {
    canvas.DefinePen(Ink());
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
        style.font.bold = true;
        canvas.Text(row.text, {x, middle}, style);
        return;
    }
    if (row.pen) {
        const std::array<Point, 2> line{Point{x, middle}, Point{x + sampleWidth * size, middle}};
        canvas.Line(line, *row.pen, 0);
    } else {
        // In the middle of its place, wherever its insertion point is.
        const double scale = LegendScale(*row.shape);
        const Box& bounds = row.shape->bounds;
        canvas.Symbol(*row.shape,
                      {x + sampleWidth * size / 2 - (bounds.minX + bounds.maxX) / 2 * scale,
                       middle + (bounds.minY + bounds.maxY) / 2 * scale},
                      scale, 0, Ink());
    }
    const double textLeft = (sampleWidth + gap) * size;
    style.height = nameText * size;
    canvas.Text(Fitted(row.text, style, columnWidth * size - textLeft), {x + textLeft, middle}, style);
}

std::string Fitted(const std::string& text, const TextStyle& style, double width) {
    if (TextWidth(text, style.font, style.height) <= width) return text;
    std::string cut = text;
    while (!cut.empty() && TextWidth(cut + "…", style.font, style.height) > width) {
        while (!cut.empty() && (static_cast<unsigned char>(cut.back()) & 0xC0) == 0x80) cut.pop_back();
        if (!cut.empty()) cut.pop_back();
    }
    return cut + "…";
}

}  // namespace vemrado::draw
