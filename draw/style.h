// How things are drawn: pens, symbol shapes and text styles. Lengths are millimetres on paper.

#pragma once

#include <cstdint>
#include <string>

#include "geometry.h"
#include "map/placement.h"
#include "map/symbology.h"

namespace vemrado::draw {

using map::Across;
using map::Face;
using map::Upright;

struct Pen : map::Pen {
    std::string id;  // names the pen in the picture: "line-21900"
};

struct SymbolShape : map::SymbolDrawing {
    std::string id;  // "symbol-104"
};

struct TextStyle {
    Face face;
    double height = 2;    // of a capital letter, mm
    double rotation = 0;  // degrees, counter-clockwise from the reading direction of the page
    Across across = Across::left;
    Upright upright = Upright::baseline;
    uint32_t colour = 0;
    bool halo = false;  // white around the letters, so that they can be read on lines
};

constexpr double haloWidth = 0.12;       // em, on each side of a letter's strokes
constexpr double capitalsPerEm = 0.729;  // height of a capital letter in DejaVu Sans and Serif

// Width of a UTF-8 text in millimetres, by the letters' own advances.
double TextWidth(const std::string& text, const Face& face, double height);

}  // namespace vemrado::draw
