// A symbology as the module makes it available, with every problem that loading it shows.

#pragma once

#include <string>
#include <vector>

#include "map/symbology.h"

namespace vemrado::tools {

struct CheckedLine {
    map::CodeEntry entry;
    bool known = false;  // the code leads to a line type
    double width = 0;    // mm, as the table gives it; 0: it gives none
    map::Pen pen;
};

struct CheckedSymbol {
    map::CodeEntry entry;
    map::SymbolDrawing drawing;  // without strokes: it draws nothing
};

struct CheckedSymbology {
    std::vector<CheckedLine> lines;
    std::vector<CheckedSymbol> symbols;
    std::vector<std::string> problems;  // one line each, UTF-8
};

// Loads the symbology of a data directory through the module and looks up every code that its tables name.
CheckedSymbology CheckSymbology(const std::string& dataDirectory);

}  // namespace vemrado::tools
