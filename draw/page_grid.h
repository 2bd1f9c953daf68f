// The pages that a map takes when each shows a part of it: a grid over the ground, without the pages that
// would be empty.

#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "scene.h"

namespace vemrado::draw {

struct GridCell {
    int64_t row = 0;  // from the top
    int64_t column = 0;
    auto operator<=>(const GridCell&) const = default;
};

class PageGrid {
  public:
    // Of cells of this size, m, in the middle of which the ground lies. Of more than so many that show
    // something none are kept.
    PageGrid(const Scene& scene, const Box& ground, double cellWidth, double cellHeight, size_t most);

    bool TooMany() const { return tooMany; }
    // Those that show something, row by row from the top left.
    const std::vector<GridCell>& Cells() const { return cells; }
    Box GroundOf(GridCell cell) const;
    // Its place among the cells; none for one that shows nothing.
    std::optional<size_t> IndexOf(GridCell cell) const;

  private:
    void Take(const Scene& scene);
    void TakePoint(Point point);
    void TakeSegment(Point from, Point to);
    void TakeCell(int64_t row, int64_t column);
    Point InCells(Point ground) const;

    size_t most;
    double width;
    double height;
    int64_t rows;
    int64_t columns;
    Point corner;  // top left, on the ground
    bool tooMany = false;
    GridCell last{-1, -1};
    std::set<GridCell> found;
    std::vector<GridCell> cells;
};

}  // namespace vemrado::draw
