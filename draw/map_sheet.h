// Lays a scene out on a page and draws it: the map alone, or the map in a frame with title, grid, scale bar,
// north arrow and legend.

#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "canvas.h"
#include "legend.h"
#include "scene.h"

namespace vemrado::draw {

struct SheetOptions {
    std::optional<Box> box;  // what the map shows, exactly; none: everything
    bool legend = false;     // frame, title, legend and so on
    std::string title;
    double pixels =
        0;  // width of the picture in pixels, for which the legend stays readable; 0: as large as on paper
};

class MapSheet {
  public:
    // The scene lives longer than the sheet. It is not empty, or a box is given.
    MapSheet(const Scene& scene, const SheetOptions& options);

    // At the scale of the map.
    PageSize Page() const { return page; }
    void Draw(Canvas& canvas) const;
    // Strokes, symbols and texts of the map.
    uint64_t Count() const;

  private:
    void LayOut();
    void LayOutAround(double width, double height, double wantedSize);
    Point OnPaper(Point ground) const;
    void DefineStyles(Canvas& canvas) const;
    void DrawMap(Canvas& canvas) const;
    void DrawLayer(Canvas& canvas, const Layer& layer) const;
    void DrawStrokes(Canvas& canvas, const Layer& layer) const;

    const Scene& scene;
    SheetOptions options;
    Box ground;  // what the map shows
    Legend legend;
    Box area;  // where on the page
    Point legendCorner;
    PageSize page;
    double size = 1;                     // of what stands around the map
    double enlargement = 1;              // of samples and crosses, where the picture is smaller than on paper
    std::map<uint32_t, Pen> symbolPens;  // by colour
};

}  // namespace vemrado::draw
