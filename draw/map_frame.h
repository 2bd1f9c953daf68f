// What stands around the map of a sheet: frame, grid, title, north arrow and scale bar. Positions are on
// paper. The size is 1 on a small sheet and more on a large one.

#pragma once

#include <string>

#include "canvas.h"

namespace vemrado::draw {

// Must be called before anything here is drawn.
void DefineFramePens(Canvas& canvas);

void DrawFrame(Canvas& canvas, const Box& area);

// Crosses at round coordinates, and the coordinates outside the frame, without the sign of a map that lies
// below 0 altogether. They are at most 100 mm apart times the enlargement of what stands on the map, but no
// more than can be told apart on the sheet.
void DrawGrid(Canvas& canvas, const Box& area, const Box& ground, double size, double enlargement);

// "Scale 1 : 1000"
std::string ScaleText(double mapScale);

// The corner is the upper left one.
void DrawTitle(Canvas& canvas, Point corner, double width, const std::string& title,
               const std::string& subtitle, double size);

// The corner is the upper right one. North is the direction on the ground, a unit vector.
void DrawNorthArrow(Canvas& canvas, Point corner, Point north, double size);

// The corner is the lower left one of the whole; the bar has a round length that fits the width.
void DrawScaleBar(Canvas& canvas, Point corner, double width, double millimetresPerMetre, double size);

}  // namespace vemrado::draw
