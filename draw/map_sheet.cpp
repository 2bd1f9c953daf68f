#include "map_sheet.h"

#include <algorithm>
#include <cmath>

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

Box AtLeast(const Box& box, double side) {
    const double x = std::max(0.0, (side - box.Width()) / 2);
    const double y = std::max(0.0, (side - box.Height()) / 2);
    return {box.minX - x, box.minY - y, box.maxX + x, box.maxY + y};
}

}  // namespace

Box GroundOf(const Scene& scene, double margin) {
    const double metres = 1 / scene.MillimetresPerMetre();  // a millimetre on paper
    return AtLeast(scene.Extent(), smallestSide * metres).Grown(margin * metres);
}

MapSheet::MapSheet(const Scene& mapScene, const SheetOptions& wanted)
    : scene(mapScene),
      options(wanted),
      view(mapScene),
      window{wanted.box ? *wanted.box : GroundOf(mapScene, wanted.legend ? framedMargin : bareMargin),
             {},
             wanted.box ? EdgeTexts::leftOut : EdgeTexts::none},
      legend(mapScene, window.ground) {
    LayOut();
    if (options.mapScale > 0) page.zoom = scene.mapScale / options.mapScale;
}

void MapSheet::LayOut() {
    const double width = window.ground.Width() * scene.MillimetresPerMetre();
    const double height = window.ground.Height() * scene.MillimetresPerMetre();
    if (!options.legend) {
        window.area = {0, 0, width, height};
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
    const Box& area = window.area = {margin, top, margin + width, top + height};
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

void MapSheet::Draw(Canvas& canvas) const {
    const Box& area = window.area;
    view.DefineStyles(canvas);
    if (options.legend) {
        legend.DefineStyles(canvas);
        DefineFramePens(canvas);
        DrawGrid(canvas, area, window.ground, size, enlargement);
    }
    view.Draw(canvas, window);
    if (!options.legend) return;
    const double margin = pageMargin * size;
    const double width = page.width - 2 * margin;
    canvas.BeginGroup("frame", "");
    DrawFrame(canvas, area);
    DrawTitle(canvas, {margin, margin}, width, options.title,
              ScaleText(options.mapScale > 0 ? options.mapScale : scene.mapScale), size);
    DrawNorthArrow(canvas, {margin + width, margin * 0.7}, scene.north, size);
    DrawScaleBar(canvas, {margin, area.maxY + footHeight * size}, area.Width(), scene.MillimetresPerMetre(),
                 size);
    canvas.EndGroup();
    legend.Draw(canvas, legendCorner);
}

}  // namespace vemrado::draw
