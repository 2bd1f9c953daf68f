#include "map_view.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "clip.h"

namespace vemrado::draw {
namespace {

constexpr double symbolWidth = 0.18;  // mm of the strokes of symbols
constexpr double clipMargin = 2;  // mm beyond the window to which strokes go on, more than any line is wide
constexpr double largestSymbol = 50;  // mm that a symbol may reach into a window from outside

bool Holds(const Box& box, const Box& part) {
    return box.Contains({part.minX, part.minY}) && box.Contains({part.maxX, part.maxY});
}

Box BoundsOf(std::span<const Point> points) {
    Box bounds;
    for (const Point point : points) bounds.Add(point);
    return bounds;
}

}  // namespace

MapView::MapView(const Scene& mapScene) : scene(mapScene) {
    for (const auto& [number, layer] : scene.layers) {
        for (const PlacedSymbol& symbol : layer.symbols) {
            Pen& pen = symbolPens[symbol.colour];
            if (!pen.id.empty()) continue;
            pen.id = "symbols-" + std::to_string(symbol.colour);
            pen.colour = symbol.colour;
            pen.width = symbolWidth;
        }
    }
}

uint64_t MapView::Count() const {
    uint64_t count = 0;
    for (const auto& [number, layer] : scene.layers)
        count += layer.strokes.size() + layer.symbols.size() + layer.texts.size();
    return count;
}

void MapView::DefineStyles(Canvas& canvas) const {
    for (const LineStyle& style : scene.lineStyles) canvas.DefinePen(style.pen);
    for (const auto& [colour, pen] : symbolPens) canvas.DefinePen(pen);
    for (const SymbolStyle& style : scene.symbolStyles) canvas.DefineSymbol(style.shape);
}

Point MapView::OnPaper(Point point, const MapWindow& window) const {
    const double scale = scene.MillimetresPerMetre();
    return {window.area.minX + (point.x - window.ground.minX) * scale,
            window.area.minY + (window.ground.maxY - point.y) * scale};
}

void MapView::Draw(Canvas& canvas, const MapWindow& window) const {
    if (window.edge != EdgeTexts::none) canvas.BeginClip(window.area);
    for (const auto& [number, layer] : scene.layers) {
        const std::string id =
            layer.change ? scene.lineStyles[*layer.change].pen.id : "layer-" + std::to_string(number);
        canvas.BeginGroup(id, layer.name);
        DrawStrokes(canvas, layer, window);
        DrawSymbols(canvas, layer, window);
        if (window.edge != EdgeTexts::whole) DrawTexts(canvas, layer, window);
        canvas.EndGroup();
    }
    if (window.edge != EdgeTexts::none) canvas.EndClip();
    if (window.edge != EdgeTexts::whole) return;
    for (const auto& [number, layer] : scene.layers) DrawTexts(canvas, layer, window);
}

void MapView::DrawStrokes(Canvas& canvas, const Layer& layer, const MapWindow& window) const {
    const Box seen = window.area.Grown(clipMargin);
    const Box seenGround = window.ground.Grown(clipMargin / scene.MillimetresPerMetre());
    std::vector<Point> points;
    for (const Stroke& stroke : layer.strokes) {
        const std::span<const Point> onGround(layer.points.data() + stroke.first, stroke.count);
        if (window.edge != EdgeTexts::none && !seenGround.Meets(BoundsOf(onGround))) continue;
        points.clear();
        for (const Point point : onGround) points.push_back(OnPaper(point, window));
        ClipStroke(points, seen, [&](std::span<const Point> part, double lengthBefore) {
            canvas.Line(part, scene.lineStyles[stroke.style].pen, lengthBefore);
        });
    }
}

void MapView::DrawSymbols(Canvas& canvas, const Layer& layer, const MapWindow& window) const {
    const Box seen = window.ground.Grown(largestSymbol / scene.MillimetresPerMetre());
    for (const PlacedSymbol& symbol : layer.symbols) {
        if (window.edge == EdgeTexts::whole && !seen.Contains(symbol.point)) continue;
        canvas.Symbol(scene.symbolStyles[symbol.style].shape, OnPaper(symbol.point, window), symbol.scale,
                      symbol.rotation, symbolPens.at(symbol.colour));
    }
}

bool MapView::Shows(const PlacedText& text, const MapWindow& window) const {
    if (window.edge == EdgeTexts::none) return true;
    const Box extent = scene.ExtentOf(text);
    if (window.edge == EdgeTexts::leftOut) return Holds(window.ground, extent);
    // A middle on the line between two windows is in one of them.
    const Point middle = extent.Middle();
    return middle.x >= window.ground.minX && middle.x < window.ground.maxX && middle.y > window.ground.minY &&
           middle.y <= window.ground.maxY;
}

void MapView::DrawTexts(Canvas& canvas, const Layer& layer, const MapWindow& window) const {
    for (const PlacedText& text : layer.texts) {
        if (!Shows(text, window)) continue;
        TextStyle style = text.style;
        style.halo = true;
        canvas.Text(text.text, OnPaper(text.point, window), style);
    }
}

}  // namespace vemrado::draw
