// A sheet with every line type and every symbol of a symbology. Symbols are drawn twice: as large as on a
// map, and enlarged.

#pragma once

#include <string>

#include "draw/canvas.h"
#include "symbology_check.h"

namespace vemrado::tools {

class SymbologySheet {
  public:
    SymbologySheet(const CheckedSymbology& checked, std::string directory);

    draw::PageSize Page() const { return page; }
    void Draw(draw::Canvas& canvas) const;

  private:
    void DrawHeading(draw::Canvas& canvas, const std::string& text, double y) const;
    struct LineCell {
        map::CodeEntry entry;
        bool known;
        draw::Pen pen;
    };
    struct SymbolCell {
        map::CodeEntry entry;
        draw::SymbolShape shape;
    };
    void DrawLine(draw::Canvas& canvas, const LineCell& line, draw::Point corner) const;
    void DrawSymbol(draw::Canvas& canvas, const SymbolCell& symbol, draw::Point corner) const;

    std::vector<LineCell> lines;
    std::vector<SymbolCell> symbols;
    std::string source;
    draw::PageSize page;
    double linesTop = 0;  // mm; 0: the sheet has no line types
    double symbolsTop = 0;
};

}  // namespace vemrado::tools
