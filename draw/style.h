// How things are drawn: pens, symbol shapes and text styles. Lengths are millimetres on paper.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "geometry.h"

struct PatternElement;

namespace vemrado::draw {

struct Pen {
    std::string id;              // names the pen in the picture: "line-21900"
    uint32_t colour = 0;         // red + green * 256 + blue * 65536
    double width = 0.13;         // mm
    std::vector<double> dashes;  // drawn, gap, drawn, gap, ...; even in number; empty: continuous
    double dashOffset = 0;       // where in the pattern a stroke begins
    bool invisible = false;      // its pattern has no drawn stretch
};

// Sets the dashes of a pen from a registered line pattern. Neighbours of one kind are joined, round the end
// of the list too. A pattern that is all gaps makes the pen invisible. Lengths that are not finite or below 0
// are left out; a drawn length of 0 becomes a dot as long as the pen is wide. A pattern without gaps, or too
// short to be seen as one, leaves the pen continuous. Null is no pattern.
void SetDashes(Pen& pen, const PatternElement* elements);

// The strokes of a point symbol around its insertion point, y up.
struct SymbolShape {
    std::string id;  // "symbol-104"
    std::vector<std::vector<Point>> strokes;
    Box bounds;  // holds the insertion point too
};

// The strokes of a registered point pattern, null: none. Points that are not finite are left out.
SymbolShape MakeSymbolShape(std::string id, const PatternElement* elements);

enum class Across : uint8_t { left, middle, right };
enum class Upright : uint8_t { baseline, middle, top };

struct Font {
    bool serif = false;
    bool bold = false;
    bool italic = false;
    bool operator==(const Font&) const = default;
};

struct TextStyle {
    Font font;
    double height = 2;    // of a capital letter, mm
    double rotation = 0;  // degrees, counter-clockwise from the reading direction of the page
    Across across = Across::left;
    Upright upright = Upright::baseline;
    uint32_t colour = 0;
};

constexpr double CapitalsPerEm = 0.729;  // height of a capital letter in DejaVu Sans and Serif
const char* FontFamily(const Font& font);

// Width of a UTF-8 text in millimetres, by the letters' own advances.
double TextWidth(const std::string& text, const Font& font, double height);

}  // namespace vemrado::draw
