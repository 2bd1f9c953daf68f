#include "map_frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "legend.h"
#include "words.h"

namespace vemrado::draw {
namespace {

constexpr double gridSpacing = 100;   // mm on paper on a small sheet, at most
constexpr double mostGridLines = 24;  // each way, however large the sheet
constexpr double labelGap = 2;        // between grid labels, times the sheet's size
constexpr double crossArmLength = 2;
constexpr double tickLengthOutside = 2;
constexpr double coordinateHeight = 1.5;
constexpr double titleHeight = 4.2;
constexpr double subtitleHeight = 2.2;
constexpr double arrowLength = 10;
constexpr double arrowRoom = 15;
constexpr double scaleBarWidth = 60;  // at most
constexpr double scaleBarHeight = 1.5;

Pen FramePen(const char* id, double width, uint32_t colour) {
    Pen pen;
    pen.id = id;
    pen.width = width;
    pen.colour = colour;
    return pen;
}

const Pen framePen = FramePen("frame-line", 0.35, 0);
const Pen finePen = FramePen("frame-fine", 0.13, 0);
const Pen gridPen = FramePen("grid", 0.13, 0x808080);

// The largest of 1, 2 and 5 times a power of ten that is not above the value.
double RoundDown(double value) {
    const double power = std::pow(10, std::floor(std::log10(value)));
    const double lead = value / power;
    return power * (lead >= 5 ? 5 : lead >= 2 ? 2 : 1);
}

std::string Formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

void DrawSegment(Canvas& canvas, const Pen& pen, Point from, Point to) {
    const std::array<Point, 2> points{from, to};
    canvas.Line(points, pen, 0);
}

void FillBar(Canvas& canvas, double left, double top, double width, double height) {
    const std::array<Point, 4> outline{Point{left, top}, Point{left + width, top},
                                       Point{left + width, top + height}, Point{left, top + height}};
    canvas.Fill(outline, 0);
}

// S-JTSK has positive coordinates; a picture with east to the right and north up has them with the other
// sign.
std::string Label(double coordinate, bool allNegative) {
    return Formatted("%.0f", allNegative ? std::abs(coordinate) : coordinate);
}

// Distance of grid lines on the ground: round, and wide enough for the labels and for what a picture can
// show.
double GridStep(const Box& area, const Box& ground, double enlargement, double longestLabel) {
    const double metresPerMillimetre = ground.Width() / area.Width();
    const double widest = std::min(area.Width(), area.Height()) / 2;
    const double spacing = std::min(gridSpacing * enlargement, widest);
    const double narrowest = std::max(longestLabel, std::max(area.Width(), area.Height()) / mostGridLines);
    double step = RoundDown(spacing * metresPerMillimetre * (1 + 1e-9));
    while (step < narrowest * metresPerMillimetre) step = RoundDown(2.5 * step);
    return step;
}

// Round coordinates between two limits, with their places on paper.
struct GridLine {
    double coordinate;
    double place;
};

std::vector<GridLine> GridLines(double from, double to, double step, double placeOfFrom, double placeOfTo) {
    std::vector<GridLine> lines;
    for (double i = std::ceil(from / step); i * step <= to; ++i) {
        lines.push_back(
            {i * step, placeOfFrom + (i * step - from) / (to - from) * (placeOfTo - placeOfFrom)});
    }
    return lines;
}

}  // namespace

void DefineFramePens(Canvas& canvas) {
    for (const Pen* pen : {&framePen, &finePen, &gridPen}) canvas.DefinePen(*pen);
}

void DrawFrame(Canvas& canvas, const Box& area) {
    const std::array<Point, 5> outline{Point{area.minX, area.minY}, Point{area.maxX, area.minY},
                                       Point{area.maxX, area.maxY}, Point{area.minX, area.maxY},
                                       Point{area.minX, area.minY}};
    canvas.Line(outline, framePen, 0);
}

void DrawGrid(Canvas& canvas, const Box& area, const Box& ground, double size, double enlargement) {
    TextStyle style;
    style.height = coordinateHeight * size;
    style.across = Across::middle;
    const bool negativeX = ground.maxX <= 0;
    const bool negativeY = ground.maxY <= 0;
    double longest = 0;
    for (const double end : {ground.minX, ground.maxX, ground.minY, ground.maxY})
        longest = std::max(longest, TextWidth(Label(end, false), style.face, style.height));
    const double step = GridStep(area, ground, enlargement, longest + labelGap * size);
    const auto columns = GridLines(ground.minX, ground.maxX, step, area.minX, area.maxX);
    const auto lines = GridLines(ground.minY, ground.maxY, step, area.maxY, area.minY);
    const double crossArm = crossArmLength * enlargement;
    const double tickLength = tickLengthOutside * size;
    const Box inside = area.Grown(-crossArm);
    canvas.BeginGroup("grid", "");
    for (const GridLine& column : columns) {
        DrawSegment(canvas, finePen, {column.place, area.maxY}, {column.place, area.maxY + tickLength});
        DrawSegment(canvas, finePen, {column.place, area.minY}, {column.place, area.minY - tickLength});
        style.upright = Upright::top;
        canvas.Text(Label(column.coordinate, negativeX), {column.place, area.maxY + tickLength + size},
                    style);
        for (const GridLine& line : lines) {
            if (!inside.Contains({column.place, line.place})) continue;
            DrawSegment(canvas, gridPen, {column.place - crossArm, line.place},
                        {column.place + crossArm, line.place});
            DrawSegment(canvas, gridPen, {column.place, line.place - crossArm},
                        {column.place, line.place + crossArm});
        }
    }
    style.rotation = 90;
    style.upright = Upright::baseline;
    for (const GridLine& line : lines) {
        DrawSegment(canvas, finePen, {area.minX, line.place}, {area.minX - tickLength, line.place});
        DrawSegment(canvas, finePen, {area.maxX, line.place}, {area.maxX + tickLength, line.place});
        canvas.Text(Label(line.coordinate, negativeY), {area.minX - tickLength - size, line.place}, style);
    }
    canvas.EndGroup();
}

std::string ScaleText(double mapScale) {
    return HostWords().scale + Formatted(" 1 : %.10g", mapScale);
}

void DrawTitle(Canvas& canvas, Point corner, double width, const std::string& title,
               const std::string& subtitle, double size) {
    TextStyle style;
    style.height = titleHeight * size;
    style.face.bold = true;
    style.upright = Upright::top;
    canvas.Text(Fitted(title, style, width - arrowRoom * size), corner, style);
    style.height = subtitleHeight * size;
    style.face.bold = false;
    canvas.Text(Fitted(subtitle, style, width - arrowRoom * size),
                {corner.x, corner.y + 1.7 * titleHeight * size}, style);
}

void DrawNorthArrow(Canvas& canvas, Point corner, Point north, double size) {
    const Point center{corner.x - arrowRoom / 2 * size, corner.y + arrowRoom / 2 * size};
    const double length = arrowLength * size;
    const double halfWidth = length / 5;
    const Point along{north.x * length / 2, -north.y * length / 2};
    const Point across{-along.y / (length / 2) * halfWidth, along.x / (length / 2) * halfWidth};
    const Point tip{center.x + along.x, center.y + along.y};
    const Point tail{center.x - along.x * 0.6, center.y - along.y * 0.6};
    const Point left{center.x - along.x - across.x, center.y - along.y - across.y};
    const Point right{center.x - along.x + across.x, center.y - along.y + across.y};
    canvas.Fill(std::array<Point, 3>{tip, tail, left}, 0);
    canvas.Line(std::array<Point, 4>{tip, right, tail, tip}, finePen, 0);
    TextStyle style;
    style.height = length * 0.26;
    style.face.bold = true;
    style.across = Across::middle;
    style.upright = Upright::middle;
    canvas.Text(HostWords().north, {center.x + along.x * 1.5, center.y + along.y * 1.5}, style);
}

void DrawScaleBar(Canvas& canvas, Point corner, double width, double millimetresPerMetre, double size) {
    const double metres = RoundDown(std::min(scaleBarWidth * size, width) / millimetresPerMetre);
    const double length = metres * millimetresPerMetre;
    const double height = scaleBarHeight * size;
    const double top = corner.y - height;
    constexpr int parts = 4;
    const double part = length / parts;
    for (int i = 0; i < parts; i += 2) FillBar(canvas, corner.x + i * part, top, part, height);
    canvas.Line(std::array<Point, 5>{Point{corner.x, top}, Point{corner.x + length, top},
                                     Point{corner.x + length, corner.y}, Point{corner.x, corner.y},
                                     Point{corner.x, top}},
                finePen, 0);
    TextStyle style;
    style.height = 1.2 * height;
    style.across = Across::middle;
    const bool kilometres = metres >= 2000;
    const double unit = kilometres ? 1000 : 1;
    for (const double share : {0.0, 0.5, 1.0}) {
        std::string label = Formatted("%.6g", metres * share / unit);
        if (share == 1) label += kilometres ? " km" : " m";
        canvas.Text(label, {corner.x + length * share, top - 0.6 * height}, style);
    }
}

}  // namespace vemrado::draw
