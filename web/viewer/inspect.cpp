// What the file says of one element: it is read again up to there, as the scene keeps only what is drawn.

#include <algorithm>
#include <cmath>

#include "json.h"
#include "map/reading.h"
#include "queries.h"

namespace vemrado::web {
namespace {

constexpr size_t mostElements = 500;

bool IsSame(draw::Point a, draw::Point b) {
    return a.x == b.x && a.y == b.y;
}

// Whether the line has both points one after the other.
bool Holds(const map::MapLine& line, draw::Point first, draw::Point second) {
    for (size_t i = 1; i < line.points.size(); ++i) {
        if (IsSame(line.points[i - 1], first) && IsSame(line.points[i], second)) return true;
    }
    return false;
}

bool HoldsSymbol(const map::MapLine& line, draw::Point point, int code) {
    return std::any_of(line.symbols.begin(), line.symbols.end(), [&](const map::PlacedSymbol& symbol) {
        return symbol.symbol == code && IsSame(symbol.point, point);
    });
}

void PutElement(Json& json, const Sheet& sheet, const map::MapLine& line, size_t i) {
    const map::Code code = line.CodeAt(i);
    const int symbol = line.symbolCodes[i];
    json.Begin('{').Member("type", std::string(1, line.types[i]));
    json.Member("x", line.points[i].x).Member("y", line.points[i].y);
    if (code.Given())
        json.Member("code", std::string(code.text)).Member("codeName", LineName(sheet, code.number));
    if (symbol != 0) json.Member("symbol", symbol).Member("symbolName", SymbolName(sheet, symbol));
    json.Member("m", line.valuesM[i]).Member("r", line.valuesR[i]).Member("u", line.valuesU[i]).End('}');
}

double LengthOf(const map::MapLine& line) {
    double length = 0;
    for (const map::Stroke& stroke : line.wholeStrokes) {
        for (size_t i = stroke.first + 1; i < stroke.first + stroke.count; ++i) {
            length +=
                std::hypot(line.points[i].x - line.points[i - 1].x, line.points[i].y - line.points[i - 1].y);
        }
    }
    return length;
}

std::string DescribeLine(const Sheet& sheet, const map::MapLine& line) {
    Json json;
    json.Begin('{')
        .Member("kind", "line")
        .Member("fileLine", line.fileLine)
        .Member("vertices", line.points.size());
    json.Member("length", LengthOf(line)).Key("elements").Begin('[');
    for (size_t i = 0; i < std::min(line.points.size(), mostElements); ++i) PutElement(json, sheet, line, i);
    return json.End(']').End('}').Text();
}

std::string DescribeText(const map::MapText& text) {
    Json json;
    json.Begin('{').Member("kind", "text").Member("fileLine", text.fileLine).Member("code", text.code);
    json.Member("d", text.valueD)
        .Member("f", text.valueF)
        .Member("h", text.heightOnPaper)
        .Member("u", text.valueU);
    return json.Member("x", text.point.x).Member("y", text.point.y).End('}').Text();
}

// The elements of a sheet's file once more; the first that the test takes.
template <typename TakesLine, typename TakesText>
std::string Search(const Sheet& sheet, TakesLine takesLine, TakesText takesText) {
    OfferedFile offered(sheet.Name(), sheet.File(), sheet.Length());
    map::Importer importer;
    if (!OpenAgain(sheet, importer, offered)) return "null";
    map::Reading reading(importer, sheet.Encoding());
    for (auto kind = reading.Next(); kind != map::ElementKind::none; kind = reading.Next()) {
        if (kind == map::ElementKind::line && takesLine(reading.Line()))
            return DescribeLine(sheet, reading.Line());
        if (kind == map::ElementKind::text && takesText(reading.Text())) return DescribeText(reading.Text());
    }
    return "null";
}

}  // namespace

std::string Inspect(const Sheet& sheet, int layerNumber, int kind, uint32_t number) {
    const draw::Layer& layer = sheet.Scene().layers.at(layerNumber);
    const auto noLine = [](const map::MapLine&) { return false; };
    const auto noText = [](const map::MapText&) { return false; };
    if (kind == 0) {
        const draw::Point* points = &layer.points[layer.strokes.at(number).first];
        return Search(
            sheet,
            [&](const map::MapLine& line) {
                return line.layer == layerNumber && Holds(line, points[0], points[1]);
            },
            noText);
    }
    if (kind == 1) {
        const draw::PlacedSymbol& symbol = layer.symbols.at(number);
        const int code = sheet.Scene().symbolStyles[symbol.style].code;
        return Search(
            sheet,
            [&](const map::MapLine& line) {
                return line.layer == layerNumber && HoldsSymbol(line, symbol.point, code);
            },
            noText);
    }
    const draw::PlacedText& wanted = layer.texts.at(number);
    return Search(sheet, noLine, [&](const map::MapText& text) {
        return text.layer == layerNumber && IsSame(text.point, wanted.point) &&
               text.text.size() == wanted.text.size();
    });
}

}  // namespace vemrado::web
