// A symbology as the module makes it available, with every problem that loading it shows.

#pragma once

#include <string>
#include <vector>

#include "client/symbology_index.h"
#include "draw/style.h"

namespace vemrado::tools {

struct CheckedLine {
    client::SymbologyIndex::LineCode entry;
    bool known = false;  // the code leads to a line type
    draw::Pen pen;
};

struct CheckedSymbol {
    client::SymbologyIndex::SymbolCode entry;
    draw::SymbolShape shape;  // without strokes: it draws nothing
};

struct CheckedSymbology {
    std::vector<CheckedLine> lines;
    std::vector<CheckedSymbol> symbols;
    std::vector<std::string> problems;  // one line each, UTF-8
};

// Loads the symbology of a data directory through the module: every code that its tables name is looked up
// and registered as for an element of a map.
CheckedSymbology CheckSymbology(const std::string& dataDirectory);

}  // namespace vemrado::tools
