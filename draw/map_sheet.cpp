#include "map_sheet.h"

#include <algorithm>
#include <cmath>

#include "clip.h"
#include "map_frame.h"
#include "words.h"

namespace vemrado::draw {
namespace {

constexpr double smallestSide = 10;  // mm of map, for a file of one point
constexpr double bareMargin = 3;     // mm between the drawing and the edge of a picture without a frame
constexpr double framedMargin = 6;   // mm between the drawing and the frame
constexpr double smallSheet = 250;   // mm; on larger ones what stands around the map grows
constexpr double largestSize = 2.5;
constexpr double pageMargin = 12;  // mm around the frame, times the sheet's size, as what follows
constexpr double titleHeight = 16;
constexpr double footHeight = 16;
constexpr double legendGap = 8;
constexpr double lowestLegend = 120;   // mm that a column of the legend may take beside a smaller map
constexpr double legendText = 1.9;     // mm; height of a capital letter in the legend
constexpr double readablePixels = 7;   // of a capital letter
constexpr double largestShare = 0.02;  // keeps the margins below half the page
constexpr double symbolWidth = 0.18;   // mm of the strokes of symbols
constexpr double clipMargin = 2;       // mm beyond the map to which strokes go on, more than any line is wide

Box AtLeast(const Box& box, double side) {
    const double x = std::max(0.0, (side - box.Width()) / 2);
    const double y = std::max(0.0, (side - box.Height()) / 2);
    return {box.minX - x, box.minY - y, box.maxX + x, box.maxY + y};
}

bool Holds(const Box& box, const Box& part) {
    return box.Contains({part.minX, part.minY}) && box.Contains({part.maxX, part.maxY});
}

// What the map shows.
Box GroundOf(const Scene& scene, const SheetOptions& options) {
    if (options.box) return *options.box;
    const double metres = 1 / scene.MillimetresPerMetre();  // a millimetre on paper
    const double margin = options.legend ? framedMargin : bareMargin;
    return AtLeast(scene.Extent(), smallestSide * metres).Grown(margin * metres);
}

}  // namespace

MapSheet::MapSheet(const Scene& mapScene, const SheetOptions& wanted)
    : scene(mapScene), options(wanted), ground(GroundOf(mapScene, wanted)), legend(mapScene, ground) {
    LayOut();
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

void MapSheet::LayOut() {
    const double width = ground.Width() * scene.MillimetresPerMetre();
    const double height = ground.Height() * scene.MillimetresPerMetre();
    if (!options.legend) {
        area = {0, 0, width, height};
        page = {width, height, 1};
        return;
    }
    // Titles grow with the sheet, as people look at a large one from farther away.
    const double usual = std::clamp(std::sqrt(width * height) / smallSheet, 1.0, largestSize);
    LayOutAround(width, height, usual);
    if (options.pixels <= 0) return;
    // A picture of few pixels: what stands around the map grows until it can be read, and the legend goes
    // below the map.
    const double readable = readablePixels * page.width / (options.pixels * legendText);
    if (readable <= size) return;
    const double share =
        readablePixels / (options.pixels * legendText);  // of the page's width, for each unit of size
    const double needed = share * width / (1 - 2 * pageMargin * std::min(share, largestShare));
    enlargement = needed / usual;
    LayOutAround(width, height, needed);
}

void MapSheet::LayOutAround(double width, double height, double wantedSize) {
    size = wantedSize;
    const double margin = pageMargin * size;
    const double top = margin + titleHeight * size;
    area = {margin, top, margin + width, top + height};
    const double foot = footHeight * size;
    if (enlargement > 1) {
        legend.LayOutInWidth(width, size, enlargement);
        legendCorner = {area.minX, area.maxY + foot + legendGap * size};
        page.width = margin + std::max(width, legend.Width()) + margin;
        page.height = legendCorner.y + legend.Height() + margin;
        return;
    }
    legend.LayOut(std::max(height + foot, lowestLegend), size, enlargement);
    legendCorner = {area.maxX + legendGap * size, area.minY};
    page.width = legendCorner.x + legend.Width() + margin;
    page.height = top + std::max(height + foot, legend.Height()) + margin;
}

Point MapSheet::OnPaper(Point point) const {
    const double scale = scene.MillimetresPerMetre();
    return {area.minX + (point.x - ground.minX) * scale, area.minY + (ground.maxY - point.y) * scale};
}

void MapSheet::Draw(Canvas& canvas) const {
    DefineStyles(canvas);
    if (options.legend) DrawGrid(canvas, area, ground, size, enlargement);
    DrawMap(canvas);
    if (!options.legend) return;
    const double margin = pageMargin * size;
    const double width = page.width - 2 * margin;
    canvas.BeginGroup("frame", "");
    DrawFrame(canvas, area);
    DrawTitle(canvas, {margin, margin}, width, options.title, scene.mapScale, size);
    DrawNorthArrow(canvas, {margin + width, margin * 0.7}, scene.north, size);
    DrawScaleBar(canvas, {margin, area.maxY + footHeight * size}, area.Width(), scene.MillimetresPerMetre(),
                 size);
    canvas.EndGroup();
    legend.Draw(canvas, legendCorner);
}

uint64_t MapSheet::Count() const {
    uint64_t count = 0;
    for (const auto& [number, layer] : scene.layers)
        count += layer.strokes.size() + layer.symbols.size() + layer.texts.size();
    return count;
}

void MapSheet::DefineStyles(Canvas& canvas) const {
    for (const LineStyle& style : scene.lineStyles) canvas.DefinePen(style.pen);
    for (const auto& [colour, pen] : symbolPens) canvas.DefinePen(pen);
    for (const SymbolStyle& style : scene.symbolStyles) canvas.DefineSymbol(style.shape);
    if (!options.legend) return;
    legend.DefineStyles(canvas);
    DefineFramePens(canvas);
}

void MapSheet::DrawMap(Canvas& canvas) const {
    // Without a box nothing reaches the edge of the map.
    if (options.box) canvas.BeginClip(area);
    for (const auto& [number, layer] : scene.layers) {
        const std::string id =
            layer.change ? scene.lineStyles[*layer.change].pen.id : "layer-" + std::to_string(number);
        canvas.BeginGroup(id, layer.name);
        DrawLayer(canvas, layer);
        canvas.EndGroup();
    }
    if (options.box) canvas.EndClip();
}

void MapSheet::DrawLayer(Canvas& canvas, const Layer& layer) const {
    DrawStrokes(canvas, layer);
    for (const PlacedSymbol& symbol : layer.symbols) {
        canvas.Symbol(scene.symbolStyles[symbol.style].shape, OnPaper(symbol.point), symbol.scale,
                      symbol.rotation, symbolPens.at(symbol.colour));
    }
    for (const PlacedText& text : layer.texts) {
        // A number that the edge cuts would read as another number.
        if (options.box && !Holds(ground, scene.ExtentOf(text))) continue;
        TextStyle style = text.style;
        style.halo = true;
        canvas.Text(text.text, OnPaper(text.point), style);
    }
}

void MapSheet::DrawStrokes(Canvas& canvas, const Layer& layer) const {
    const Box seen = area.Grown(clipMargin);
    std::vector<Point> points;
    for (const Stroke& stroke : layer.strokes) {
        const Pen& pen = scene.lineStyles[stroke.style].pen;
        points.clear();
        for (uint64_t i = 0; i < stroke.count; ++i) points.push_back(OnPaper(layer.points[stroke.first + i]));
        ClipStroke(points, seen, [&](std::span<const Point> part, double lengthBefore) {
            canvas.Line(part, pen, lengthBefore);
        });
    }
}

}  // namespace vemrado::draw
