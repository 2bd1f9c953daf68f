// A map on pages of paper: one when it fits, otherwise an overview and a page for each part, at one scale.

#pragma once

#include <optional>
#include <string>

#include "canvas.h"
#include "legend.h"
#include "map_view.h"
#include "page_grid.h"
#include "scene.h"

namespace vemrado::draw {

struct PageOptions {
    double width = 210;  // mm of the paper
    double height = 297;
    double mapScale = 0;     // as 500 for 1 : 500; 0: the scene's own
    bool fit = false;        // the largest round scale at which one page holds all, in place of mapScale
    std::optional<Box> box;  // only this part of the map
    bool legend = false;     // on a page of its own, the last
    std::string title;
};

class MapPages {
  public:
    static constexpr size_t mostParts = 400;

    // The scene lives longer. It is not empty, or a box is given.
    MapPages(const Scene& scene, const PageOptions& options);

    // The map would take more than mostParts pages. Nothing can be drawn then.
    bool TooMany() const { return grid.TooMany(); }
    double MapScale() const { return mapScale; }
    size_t PageCount() const;
    PageSize FirstPage() const;
    void Draw(Canvas& canvas) const;
    // Strokes, symbols and texts that will be drawn, more or less.
    uint64_t Count() const { return view.Count() * (HasOverview() ? 2 : 1); }

  private:
    bool HasOverview() const { return grid.Cells().size() > 1; }
    size_t PageOf(size_t part) const { return part + (HasOverview() ? 2 : 1); }
    PageSize PageAt(double scale) const;
    Box FrameAt(double scale) const;
    MapWindow WindowOf(const Box& ground, const Box& frame) const;
    void DrawAround(Canvas& canvas, const Box& ground, double scale, size_t page,
                    const std::string& subtitle) const;
    void DrawPageNumber(Canvas& canvas, Point corner, size_t page, double unit) const;
    void DrawOverview(Canvas& canvas) const;
    void DrawGridOfPages(Canvas& canvas, const Box& framed, const Box& frame, double zoom) const;
    void DrawPart(Canvas& canvas, size_t part) const;
    void NameNeighbours(Canvas& canvas, GridCell cell) const;
    void LayOutLegend();
    void DrawLegend(Canvas& canvas) const;

    const Scene& scene;
    PageOptions options;
    MapView view;
    Box ground;
    double mapScale;
    PageGrid grid;
    Legend legend;
    double legendZoom = 1;
    Pen pagesPen;
};

}  // namespace vemrado::draw
