// The map itself on a page: the scene's lines, symbols and texts within a window.

#pragma once

#include <map>

#include "canvas.h"
#include "scene.h"

namespace vemrado::draw {

// What becomes of a text at the edge of a window. One that is cut could be read as another one.
enum class EdgeTexts : uint8_t {
    none,     // nothing reaches the edge
    leftOut,  // a text that the edge would cut is left out
    whole,    // it goes on over the edge in the window that holds its middle
};

struct MapWindow {
    Box ground;  // m
    Box area;    // mm on the page, at the map's scale
    EdgeTexts edge = EdgeTexts::none;
};

class MapView {
  public:
    // The scene lives longer than the view.
    explicit MapView(const Scene& scene);

    void DefineStyles(Canvas& canvas) const;
    void Draw(Canvas& canvas, const MapWindow& window) const;
    // Strokes, symbols and texts.
    uint64_t Count() const;

    Point OnPaper(Point ground, const MapWindow& window) const;

  private:
    void DrawStrokes(Canvas& canvas, const Layer& layer, const MapWindow& window) const;
    void DrawSymbols(Canvas& canvas, const Layer& layer, const MapWindow& window) const;
    void DrawTexts(Canvas& canvas, const Layer& layer, const MapWindow& window) const;
    bool Shows(const PlacedText& text, const MapWindow& window) const;

    const Scene& scene;
    std::map<uint32_t, Pen> symbolPens;  // by colour
};

}  // namespace vemrado::draw
