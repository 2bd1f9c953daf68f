#include "page_grid.h"

#include <algorithm>
#include <cmath>

namespace vemrado::draw {
namespace {

// A map that is larger than a page by less than can be seen takes one page.
int64_t CountOf(double length, double cell) {
    return static_cast<int64_t>(std::max(1.0, std::ceil(length / cell - 1e-6)));
}

int64_t CellOf(double place, int64_t count) {
    return std::clamp(static_cast<int64_t>(std::floor(place)), int64_t{0}, count - 1);
}

}  // namespace

PageGrid::PageGrid(const Scene& scene, const Box& ground, double cellWidth, double cellHeight,
                   size_t mostCells)
    : most(mostCells),
      width(cellWidth),
      height(cellHeight),
      rows(CountOf(ground.Height(), cellHeight)),
      columns(CountOf(ground.Width(), cellWidth)),
      corner{ground.Middle().x - static_cast<double>(columns) * cellWidth / 2,
             ground.Middle().y + static_cast<double>(rows) * cellHeight / 2} {
    Take(scene);
    if (tooMany) return;
    cells.assign(found.begin(), found.end());
}

void PageGrid::Take(const Scene& scene) {
    for (const auto& [number, layer] : scene.layers) {
        for (const Stroke& stroke : layer.strokes) {
            const Point* const points = layer.points.data() + stroke.first;
            for (uint64_t i = 1; i < stroke.count && !tooMany; ++i) TakeSegment(points[i - 1], points[i]);
        }
        for (const PlacedSymbol& symbol : layer.symbols) TakePoint(symbol.point);
        for (const PlacedText& text : layer.texts) TakePoint(scene.ExtentOf(text).Middle());
    }
}

Point PageGrid::InCells(Point ground) const {
    return {(ground.x - corner.x) / width, (corner.y - ground.y) / height};
}

void PageGrid::TakeCell(int64_t row, int64_t column) {
    const GridCell cell{row, column};
    if (tooMany || cell == last) return;
    last = cell;
    found.insert(cell);
    tooMany = found.size() > most;
}

void PageGrid::TakePoint(Point point) {
    const Point place = InCells(point);
    if (place.x < 0 || place.y < 0 || place.x > static_cast<double>(columns) ||
        place.y > static_cast<double>(rows))
        return;
    TakeCell(CellOf(place.y, rows), CellOf(place.x, columns));
}

// Every cell that the segment passes through, column by column.
void PageGrid::TakeSegment(Point from, Point to) {
    Point left = InCells(from);
    Point right = InCells(to);
    if (left.x > right.x) std::swap(left, right);
    if (right.x < 0 || left.x > static_cast<double>(columns)) return;
    const double slope = right.x > left.x ? (right.y - left.y) / (right.x - left.x) : 0;
    const int64_t lastColumn = CellOf(right.x, columns);
    for (int64_t column = CellOf(left.x, columns); column <= lastColumn && !tooMany; ++column) {
        const double begin = std::max(left.x, static_cast<double>(column));
        const double end = std::min(right.x, static_cast<double>(column + 1));
        double high = left.y + (begin - left.x) * slope;
        double low = slope == 0 && right.x == left.x ? right.y : left.y + (end - left.x) * slope;
        if (high > low) std::swap(high, low);
        if (low < 0 || high > static_cast<double>(rows)) continue;
        const int64_t lastRow = CellOf(low, rows);
        for (int64_t row = CellOf(high, rows); row <= lastRow && !tooMany; ++row) TakeCell(row, column);
    }
}

Box PageGrid::GroundOf(GridCell cell) const {
    const double left = corner.x + static_cast<double>(cell.column) * width;
    const double top = corner.y - static_cast<double>(cell.row) * height;
    return {left, top - height, left + width, top};
}

std::optional<size_t> PageGrid::IndexOf(GridCell cell) const {
    const auto place = std::ranges::lower_bound(cells, cell);
    if (place == cells.end() || *place != cell) return std::nullopt;
    return static_cast<size_t>(place - cells.begin());
}

}  // namespace vemrado::draw
