#include "symbology_sheet.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "draw/legend.h"
#include "draw/words.h"

namespace vemrado::tools {
namespace {

constexpr double pageWidth = 210;  // mm
constexpr double margin = 15;
constexpr double titleHeight = 16;
constexpr double headingHeight = 12;
constexpr double sectionGap = 8;

// A cell of each table.
constexpr size_t lineColumns = 2;
constexpr double lineRowHeight = 7;
constexpr double codeWidth = 12;
constexpr double sampleWidth = 28;
constexpr size_t symbolColumns = 2;
constexpr double symbolRowHeight = 15;
constexpr double mapBox = 9;       // of the drawing as on a map, which keeps a gap to the next one
constexpr double symbolBox = 15;   // of the enlarged one, in the same way
constexpr double enlargement = 3;  // of the second drawing of each symbol, where there is room
constexpr double gap = 2.5;
constexpr double nameHeight = 1.8;

constexpr double CellWidth(size_t columns) {
    return (pageWidth - 2 * margin) / static_cast<double>(columns);
}

double TableHeight(size_t cells, size_t columns, double rowHeight) {
    return static_cast<double>((cells + columns - 1) / columns) * rowHeight;
}

// Draws each entry of a table at the corner of its cell. Cells run down the columns, as people read a list.
template <class Entry, class DrawEntry>
void DrawCells(const std::vector<Entry>& entries, size_t columns, double rowHeight, double top,
               DrawEntry drawEntry) {
    const size_t rows = (entries.size() + columns - 1) / columns;
    for (size_t cell = 0; cell < entries.size(); ++cell) {
        drawEntry(entries[cell], draw::Point{margin + CellWidth(columns) * static_cast<double>(cell / rows),
                                             top + rowHeight * static_cast<double>(cell % rows)});
    }
}

const draw::Pen& SymbolPen() {
    static const draw::Pen pen = [] {
        draw::Pen ink;
        ink.id = "symbols";
        ink.width = 0.18;
        return ink;
    }();
    return pen;
}

draw::TextStyle NameStyle() {
    draw::TextStyle style;
    style.height = nameHeight;
    style.upright = draw::Upright::middle;
    return style;
}

void DrawCentered(draw::Canvas& canvas, const draw::SymbolShape& shape, draw::Point center, double scale) {
    const draw::Box& bounds = shape.bounds;
    canvas.Symbol(shape,
                  {center.x - (bounds.minX + bounds.maxX) / 2 * scale,
                   center.y + (bounds.minY + bounds.maxY) / 2 * scale},
                  scale, 0, SymbolPen());
}

}  // namespace

SymbologySheet::SymbologySheet(const CheckedSymbology& checked, std::string directory)
    : source(std::move(directory)) {
    for (const CheckedLine& line : checked.lines) {
        lines.push_back({line.entry, line.known, {line.pen, "line-" + std::to_string(line.entry.code)}});
    }
    for (const CheckedSymbol& symbol : checked.symbols) {
        symbols.push_back({symbol.entry, {symbol.drawing, "symbol-" + std::to_string(symbol.entry.code)}});
    }
    double y = margin + titleHeight;
    if (!lines.empty()) {
        linesTop = y;
        y += headingHeight + TableHeight(lines.size(), lineColumns, lineRowHeight) + sectionGap;
    }
    if (!symbols.empty()) {
        symbolsTop = y;
        y += headingHeight + TableHeight(symbols.size(), symbolColumns, symbolRowHeight);
    }
    page = {pageWidth, y + margin, 1};
}

void SymbologySheet::Draw(draw::Canvas& canvas) const {
    for (const LineCell& line : lines) canvas.DefinePen(line.pen);
    canvas.DefinePen(SymbolPen());
    for (const SymbolCell& symbol : symbols) canvas.DefineSymbol(symbol.shape);

    draw::TextStyle style;
    style.height = 4.5;
    style.face.bold = true;
    style.upright = draw::Upright::top;
    canvas.Text(draw::HostWords().symbology, {margin, margin}, style);
    style.height = 2.2;
    style.face.bold = false;
    canvas.Text(draw::Fitted(source, style, pageWidth - 2 * margin), {margin, margin + 8}, style);

    if (linesTop > 0) {
        canvas.BeginGroup("line-types", "");
        DrawHeading(canvas, draw::HostWords().lineTypes, linesTop);
        DrawCells(lines, lineColumns, lineRowHeight, linesTop + headingHeight,
                  [&](const LineCell& line, draw::Point corner) { DrawLine(canvas, line, corner); });
        canvas.EndGroup();
    }
    if (symbolsTop > 0) {
        canvas.BeginGroup("symbols", "");
        DrawHeading(canvas, draw::HostWords().symbols, symbolsTop);
        DrawCells(symbols, symbolColumns, symbolRowHeight, symbolsTop + headingHeight,
                  [&](const SymbolCell& symbol, draw::Point corner) { DrawSymbol(canvas, symbol, corner); });
        canvas.EndGroup();
    }
}

void SymbologySheet::DrawHeading(draw::Canvas& canvas, const std::string& text, double y) const {
    draw::TextStyle style;
    style.height = 3.2;
    style.face.bold = true;
    style.upright = draw::Upright::middle;
    canvas.Text(text, {margin, y + headingHeight / 2}, style);
}

void SymbologySheet::DrawLine(draw::Canvas& canvas, const LineCell& line, draw::Point corner) const {
    const double middle = corner.y + lineRowHeight / 2;
    draw::TextStyle style = NameStyle();
    style.face.bold = true;
    canvas.Text(std::to_string(line.entry.code), {corner.x, middle}, style);
    const double sampleLeft = corner.x + codeWidth;
    const std::array<draw::Point, 2> sample{draw::Point{sampleLeft, middle},
                                            draw::Point{sampleLeft + sampleWidth, middle}};
    if (line.known) canvas.Line(sample, line.pen, 0);
    const double nameLeft = sampleLeft + sampleWidth + gap;
    style.face.bold = false;
    const double room = CellWidth(lineColumns) - (nameLeft - corner.x) - gap;
    canvas.Text(draw::Fitted(line.entry.name, style, room), {nameLeft, middle}, style);
}

void SymbologySheet::DrawSymbol(draw::Canvas& canvas, const SymbolCell& symbol, draw::Point corner) const {
    const double middle = corner.y + symbolRowHeight / 2;
    const draw::Box& bounds = symbol.shape.bounds;
    const double largest = std::max({bounds.Width(), bounds.Height(), 0.1});
    DrawCentered(canvas, symbol.shape, {corner.x + mapBox / 2, middle},
                 std::min((mapBox - gap) / largest, 1.0));
    DrawCentered(canvas, symbol.shape, {corner.x + mapBox + symbolBox / 2, middle},
                 std::min((symbolBox - gap) / largest, enlargement));
    const double textLeft = corner.x + mapBox + symbolBox + gap;
    draw::TextStyle style = NameStyle();
    style.face.bold = true;
    canvas.Text(std::to_string(symbol.entry.code), {textLeft, middle - nameHeight}, style);
    style.face.bold = false;
    const double room = CellWidth(symbolColumns) - (textLeft - corner.x) - gap;
    canvas.Text(draw::Fitted(symbol.entry.name, style, room), {textLeft, middle + nameHeight}, style);
}

}  // namespace vemrado::tools
