// Lays a scene out on a page and draws it: the map alone, or the map in a frame with title, grid, scale bar,
// north arrow and legend.

#pragma once

#include <optional>
#include <string>

#include "canvas.h"
#include "legend.h"
#include "map_view.h"
#include "scene.h"

namespace vemrado::draw {

struct SheetOptions {
    std::optional<Box> box;  // what the map shows, exactly; none: everything
    bool legend = false;     // frame, title, legend and so on
    std::string title;
    double pixels =
        0;  // width of the picture in pixels, for which the legend stays readable; 0: as large as on paper
    double mapScale = 0;  // to which all is enlarged or reduced, as 500 for 1 : 500; 0: the scene's own
};

// What a map shows that is asked for without a box: all of it and a margin, mm.
Box GroundOf(const Scene& scene, double margin);

class MapSheet {
  public:
    // The scene lives longer than the sheet. It is not empty, or a box is given.
    MapSheet(const Scene& scene, const SheetOptions& options);

    PageSize Page() const { return page; }
    void Draw(Canvas& canvas) const;
    // Strokes, symbols and texts of the map.
    uint64_t Count() const { return view.Count(); }

  private:
    void LayOut();
    void LayOutAround(double width, double height, double wantedSize);

    const Scene& scene;
    SheetOptions options;
    MapView view;
    MapWindow window;
    Legend legend;
    Point legendCorner;
    PageSize page;
    double size = 1;         // of what stands around the map
    double enlargement = 1;  // of samples and crosses, where the picture is smaller than on paper
};

}  // namespace vemrado::draw
