// What a map shows: the elements of a file with the styles that the symbology gives them. Points are on the
// ground in metres as the importer gives them, sizes on paper in millimetres.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "style.h"

namespace vemrado::draw {

struct LineStyle {
    int code = 0;        // code of the file; 0: none
    bool known = false;  // the symbology has a line type for it
    std::string name;    // UTF-8, often empty
    Pen pen;
};

struct SymbolStyle {
    int code = 0;  // symbol code of the file
    std::string name;
    SymbolShape shape;  // mirrored in a mirrored map
};

// A run of points in its layer that one pen draws.
struct Stroke {
    uint32_t style;  // into Scene::lineStyles
    uint32_t count;
    uint64_t first;
};

struct PlacedSymbol {
    Point point;
    double scale;
    double rotation;  // degrees, counter-clockwise
    uint32_t style;   // into Scene::symbolStyles
    uint32_t colour;
};

struct PlacedText {
    Point point;
    std::string text;  // UTF-8
    TextStyle style;
};

struct Layer {
    std::string name;
    std::vector<Point> points;
    std::vector<Stroke> strokes;  // by style, within a style in the order of the file
    std::vector<PlacedSymbol> symbols;
    std::vector<PlacedText> texts;
    // Of a layer of changes the line style, which the legend shows by the layer's name.
    std::optional<uint32_t> change;

    bool IsEmpty() const { return strokes.empty() && symbols.empty() && texts.empty(); }
};

// Elements that could not be drawn.
struct Skipped {
    uint64_t points = 0;   // coordinates that are no place: not a number, infinite, farther than 1,000,000 km
    uint64_t symbols = 0;  // scale or rotation that are no such thing
    uint64_t texts = 0;    // size or rotation that are no such thing
    uint64_t Count() const { return points + symbols + texts; }
};

struct Scene {
    double mapScale = 1000;
    bool mapScaleUsable = true;  // false: the file's was not, and 1000 stands in
    Point north{0, 1};           // direction of north, unit vector
    bool mirrored = false;       // east and west have changed places
    std::map<int, Layer> layers;
    std::vector<LineStyle> lineStyles;
    std::vector<SymbolStyle> symbolStyles;
    Skipped skipped;
    Box whole;  // of every point of the file, known when a box is asked for

    double MillimetresPerMetre() const { return 1000 / mapScale; }
    // Of a text with its letters, on the ground.
    Box ExtentOf(const PlacedText& text) const;
    // Of everything that is drawn: symbols and texts with their sizes on paper. Empty when nothing is.
    Box Extent() const;
};

}  // namespace vemrado::draw
