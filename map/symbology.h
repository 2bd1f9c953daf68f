// What the symbology draws with, by code: pens of lines and drawings of symbols. Lengths are millimetres on
// paper. The importer has loaded its symbology; without one every code has the plain pen and no drawing.

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "map/geometry.h"
#include "vemrado/vkm_details.h"

namespace vemrado::map {

struct Pen {
    // Of lines without a code or with one that has no line type.
    static constexpr double plainWidth = 0.13;
    // Of line types that give none.
    static constexpr double defaultWidth = 0.18;

    uint32_t colour = 0;         // red + green * 256 + blue * 65536
    double width = plainWidth;   // mm
    std::vector<double> dashes;  // drawn, gap, drawn, gap, ...; even in number; empty: continuous
    double dashOffset = 0;       // where in the pattern a stroke begins
    bool invisible = false;      // its pattern has no drawn stretch
};

// The pen of a line code; none when the code leads to no line type. Lines of such codes have the plain pen,
// which is Pen{}.
std::optional<Pen> FindPen(CVKMDetails& importer, int code);

// Sets the dashes of a pen from a pattern as the table has it: drawn and gap in turn. A gap of 0 joins its
// neighbours' ends as the pattern has them. Lengths that are not finite or below 0 are left out. A drawn
// stretch is as long as the table says, however wide the pen is; one of length 0 is a dot as long as the pen
// is wide. A pattern that is all gaps makes the pen invisible; one without gaps, or too short to be seen as
// one, leaves it continuous.
void SetDashes(Pen& pen, std::span<const double> lengths);

// The strokes of a point symbol around its insertion point, y up.
struct SymbolDrawing {
    std::vector<std::vector<Point>> strokes;
    Box bounds;        // holds the insertion point too
    double reach = 0;  // of the strokes from the point, along an axis
};

// None when the code leads to no drawing that can be read; without strokes when the drawing is empty. Points
// that are not finite or farther than 10 m from the insertion point end the drawing.
std::optional<SymbolDrawing> FindDrawing(CVKMDetails& importer, int code);

// A code of the mapping table.
struct CodeEntry {
    int code = 0;
    int number = 0;    // of its line type or symbol
    std::string name;  // UTF-8, often empty
};

// In the order of the table.
std::vector<CodeEntry> LineCodes(CVKMDetails& importer);
std::vector<CodeEntry> SymbolCodes(CVKMDetails& importer);

// The name of a code, in UTF-8; empty when it has none.
std::string LineCodeName(CVKMDetails& importer, int code);
std::string SymbolCodeName(CVKMDetails& importer, int code);

}  // namespace vemrado::map
