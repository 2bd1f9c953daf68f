#include "map_pages.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "map_frame.h"
#include "map_sheet.h"
#include "words.h"

namespace vemrado::draw {
namespace {

// Millimetres of the paper.
constexpr double mapMargin = 3;  // of the ground around the outermost points
constexpr double sideMargin = 17;
constexpr double topMargin = 30;
constexpr double bottomMargin = 26;
constexpr double legendTop = 24;
constexpr double edge = 8;            // of the page, which printers leave white
constexpr double neighbourPlace = 8;  // from the frame to the middle of the words
constexpr double wordHeight = 1.9;
constexpr double worthDrawing = 0.25;  // in the overview
constexpr double largestNumber = 6;    // height of the numbers of pages in the overview
constexpr double numberShare = 0.3;    // of the width of a page in the overview
constexpr double smallestNumber = 1.2;
constexpr double gridWidth = 0.4;
constexpr uint32_t gridColour = 0xA000C0;

// The smallest round number that is not below the value.
double RoundUp(double value) {
    constexpr std::array<double, 9> steps{1, 1.5, 2, 2.5, 3, 4, 5, 7.5, 10};
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double step : steps) {
        if (step * power >= value * (1 - 1e-9)) return step * power;
    }
    return 10 * power;
}

Box Common(const Box& a, const Box& b) {
    return {std::max(a.minX, b.minX), std::max(a.minY, b.minY), std::min(a.maxX, b.maxX),
            std::min(a.maxY, b.maxY)};
}

double FrameWidth(const PageOptions& options) {
    return options.width - 2 * sideMargin;
}

double FrameHeight(const PageOptions& options) {
    return options.height - topMargin - bottomMargin;
}

// The scale at which a page holds all of the ground.
double ScaleToFit(const Box& ground, const PageOptions& options) {
    return RoundUp(std::max(ground.Width() / FrameWidth(options), ground.Height() / FrameHeight(options)) *
                   1000);
}

double ScaleOf(const Scene& scene, const Box& ground, const PageOptions& options) {
    if (options.fit) return ScaleToFit(ground, options);
    return options.mapScale > 0 ? options.mapScale : scene.mapScale;
}

std::string Numbered(const char* word, size_t number) {
    return word + (" " + std::to_string(number));
}

}  // namespace

MapPages::MapPages(const Scene& mapScene, const PageOptions& wanted)
    : scene(mapScene),
      options(wanted),
      view(mapScene),
      ground(wanted.box ? *wanted.box : draw::GroundOf(mapScene, mapMargin)),
      mapScale(ScaleOf(mapScene, ground, wanted)),
      grid(mapScene, ground, FrameWidth(wanted) * mapScale / 1000, FrameHeight(wanted) * mapScale / 1000,
           mostParts),
      legend(mapScene, ground) {
    pagesPen.id = "pages";
    pagesPen.colour = gridColour;
    pagesPen.width = gridWidth * ScaleToFit(ground, options) / scene.mapScale;
    if (options.legend) LayOutLegend();
}

size_t MapPages::PageCount() const {
    return grid.Cells().size() + (HasOverview() ? 1 : 0) + (options.legend ? 1 : 0);
}

// What is drawn on a page has the measures of the map's own scale and is enlarged from there.
PageSize MapPages::PageAt(double scale) const {
    const double zoom = scene.mapScale / scale;
    return {options.width / zoom, options.height / zoom, zoom};
}

Box MapPages::FrameAt(double scale) const {
    const double unit = scale / scene.mapScale;
    return {sideMargin * unit, topMargin * unit, (options.width - sideMargin) * unit,
            (options.height - bottomMargin) * unit};
}

PageSize MapPages::FirstPage() const {
    return PageAt(HasOverview() ? ScaleToFit(ground, options) : mapScale);
}

// Of the frame, as much as the box leaves.
MapWindow MapPages::WindowOf(const Box& framed, const Box& frame) const {
    const Box shown = options.box ? Common(framed, *options.box) : framed;
    const double scale = scene.MillimetresPerMetre();
    return {
        shown,
        {frame.minX + (shown.minX - framed.minX) * scale, frame.minY + (framed.maxY - shown.maxY) * scale,
         frame.maxX - (framed.maxX - shown.maxX) * scale, frame.maxY - (shown.minY - framed.minY) * scale},
        EdgeTexts::whole};
}

void MapPages::Draw(Canvas& canvas) const {
    view.DefineStyles(canvas);
    if (options.legend) legend.DefineStyles(canvas);
    DefineFramePens(canvas);
    canvas.DefinePen(pagesPen);
    if (HasOverview()) DrawOverview(canvas);
    for (size_t part = 0; part < grid.Cells().size(); ++part) DrawPart(canvas, part);
    if (options.legend) DrawLegend(canvas);
}

void MapPages::DrawAround(Canvas& canvas, const Box& framed, double scale, size_t page,
                          const std::string& subtitle) const {
    const double unit = scale / scene.mapScale;
    const Box frame = FrameAt(scale);
    DrawFrame(canvas, frame);
    DrawTitle(canvas, {frame.minX, edge * unit}, frame.Width(), options.title, subtitle, unit);
    DrawNorthArrow(canvas, {frame.maxX, edge * unit * 0.7}, scene.north, unit);
    const double foot = (options.height - edge) * unit;
    DrawScaleBar(canvas, {frame.minX, foot}, frame.Width() / 2, scene.MillimetresPerMetre(), unit);
    DrawPageNumber(canvas, {frame.maxX, foot}, page, unit);
    DrawGrid(canvas, frame, framed, unit, unit);
}

void MapPages::DrawOverview(Canvas& canvas) const {
    const double scale = ScaleToFit(ground, options);
    const PageSize page = PageAt(scale);
    canvas.NewPage(page, worthDrawing / page.zoom);
    const Box frame = FrameAt(scale);
    const double perMetre = scene.MillimetresPerMetre();
    const Point middle = ground.Middle();
    const Box framed{middle.x - frame.Width() / perMetre / 2, middle.y - frame.Height() / perMetre / 2,
                     middle.x + frame.Width() / perMetre / 2, middle.y + frame.Height() / perMetre / 2};
    const MapWindow window = WindowOf(framed, frame);
    view.Draw(canvas, window);
    DrawGridOfPages(canvas, framed, frame, page.zoom);
    const std::string subtitle = HostWords().overview + (", " + ScaleText(scale)) + "; " + HostWords().parts +
                                 ": " + std::to_string(grid.Cells().size()) + ", " + ScaleText(mapScale);
    DrawAround(canvas, framed, scale, 1, subtitle);
}

void MapPages::DrawGridOfPages(Canvas& canvas, const Box& framed, const Box& frame, double zoom) const {
    const MapWindow window{framed, frame};
    TextStyle style;
    style.face.bold = true;
    style.across = Across::middle;
    style.upright = Upright::middle;
    style.colour = gridColour;
    style.halo = true;
    canvas.BeginClip(frame);
    for (size_t part = 0; part < grid.Cells().size(); ++part) {
        const Box cell = grid.GroundOf(grid.Cells()[part]);
        const Point topLeft = view.OnPaper({cell.minX, cell.maxY}, window);
        const Point bottomRight = view.OnPaper({cell.maxX, cell.minY}, window);
        canvas.Line(std::array<Point, 5>{topLeft, Point{bottomRight.x, topLeft.y}, bottomRight,
                                         Point{topLeft.x, bottomRight.y}, topLeft},
                    pagesPen, 0);
        const double height = numberShare * (bottomRight.x - topLeft.x) * zoom;
        style.height = std::clamp(height, smallestNumber, largestNumber) / zoom;
        canvas.Text(std::to_string(PageOf(part)), view.OnPaper(cell.Middle(), window), style);
    }
    canvas.EndClip();
}

void MapPages::DrawPart(Canvas& canvas, size_t part) const {
    canvas.NewPage(PageAt(mapScale), 0);
    const GridCell cell = grid.Cells()[part];
    const Box framed = grid.GroundOf(cell);
    DrawAround(canvas, framed, mapScale, PageOf(part), ScaleText(mapScale));
    view.Draw(canvas, WindowOf(framed, FrameAt(mapScale)));
    NameNeighbours(canvas, cell);
}

// Outside the middle of each side of the frame.
void MapPages::NameNeighbours(Canvas& canvas, GridCell cell) const {
    const double unit = mapScale / scene.mapScale;
    const Box frame = FrameAt(mapScale);
    const double away = neighbourPlace * unit;
    const Point middle = frame.Middle();
    struct Side {
        GridCell neighbour;
        Point place;
        double rotation;
    };
    const std::array<Side, 4> sides{
        Side{{cell.row - 1, cell.column}, {middle.x, frame.minY - away}, 0},
        Side{{cell.row + 1, cell.column}, {middle.x, frame.maxY + away}, 0},
        Side{{cell.row, cell.column - 1}, {frame.minX - away, middle.y}, 90},
        Side{{cell.row, cell.column + 1}, {frame.maxX + away, middle.y}, 90},
    };
    TextStyle style;
    style.height = wordHeight * unit;
    style.face.bold = true;
    style.across = Across::middle;
    style.upright = Upright::middle;
    style.colour = gridColour;
    for (const Side& side : sides) {
        const auto part = grid.IndexOf(side.neighbour);
        if (!part) continue;
        style.rotation = side.rotation;
        canvas.Text(Numbered(HostWords().page, PageOf(*part)), side.place, style);
    }
}

// With the map's own measures, or smaller until it fits the page.
void MapPages::LayOutLegend() {
    constexpr double smaller = 0.9;
    constexpr double smallest = 0.05;
    const double width = options.width - 2 * edge;
    const double height = options.height - legendTop - 2 * edge;
    for (; legendZoom > smallest; legendZoom *= smaller) {
        legend.LayOutInWidth(width / legendZoom, 1, 1);
        if (legend.Height() * legendZoom <= height && legend.Width() * legendZoom <= width) return;
    }
}

void MapPages::DrawLegend(Canvas& canvas) const {
    const double unit = 1 / legendZoom;
    canvas.NewPage({options.width * unit, options.height * unit, legendZoom}, 0);
    DrawTitle(canvas, {edge * unit, edge * unit}, (options.width - 2 * edge) * unit, options.title,
              HostWords().legend, unit);
    legend.Draw(canvas, {edge * unit, legendTop * unit});
    DrawPageNumber(canvas, {(options.width - edge) * unit, (options.height - edge) * unit}, PageCount(),
                   unit);
}

void MapPages::DrawPageNumber(Canvas& canvas, Point corner, size_t page, double unit) const {
    TextStyle style;
    style.height = wordHeight * unit;
    style.across = Across::right;
    canvas.Text(Numbered(HostWords().page, page) + " / " + std::to_string(PageCount()), corner, style);
}

}  // namespace vemrado::draw
