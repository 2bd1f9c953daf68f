// The one reading of a map: what the elements of a file mean. Every picture, table and check takes from here
// what a stroke is and which code holds on it, which symbols and texts stand where, and what is left out.
//
//     map::Importer importer;
//     importer.Open(options);
//     map::Reading reading(importer, client::Encoding::windows1250);
//     for (auto kind = reading.Next(); kind != map::ElementKind::none; kind = reading.Next()) {
//         if (kind == map::ElementKind::line) Take(reading.Line()); else Take(reading.Text());
//     }
//
// Memory is used again from element to element; everything that is handed out is valid until the next one is
// read. The rules are those of "Lines and their elements" in docs/vkm-format.md.

#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "client/text_encoding.h"
#include "map/importer.h"
#include "map/placement.h"

namespace vemrado::map {

// A code (K value) of a line.
struct Code {
    std::string_view text;  // UTF-8; empty: none
    int number = 0;         // that the symbology knows it by; 0 when the text is none

    bool Given() const { return !text.empty(); }
};

// A run of two points or more of a line, and the code that holds on it.
struct Stroke {
    size_t first = 0;  // into the line's points
    size_t count = 0;
    Code code;
};

struct PlacedSymbol {
    size_t element = 0;  // of the line, where it stands
    Point point;
    int symbol = 0;  // symbol code (S)
    double scale = 1;
    double rotation = 0;    // degrees counter-clockwise, of its x axis from the right
    bool mirrored = false;  // drawn with its y axis turned over, before it is rotated
    bool drawable = true;   // false: scale or rotation are no such thing
    Code code;              // that holds at its element: its colour is that of this code's pen
};

struct MapLine {
    int layer = 0;
    std::string_view layerName;
    int fileLine = 0;  // on which it begins, from 1

    // The elements that have a point, an entry of each array. An element without a type letter has no point
    // of its own: its key fields stand with the element before it. (A value that is given as the default one
    // counts as none there.)
    std::span<const Point> points;
    std::span<const char> types;  // letters C, K, L, P and R, ? for any other; a zero stands behind the last
    std::span<const char* const> codes;  // UTF-8; "" for none
    std::span<const int> codeNumbers;    // the same as numbers; 0 for none
    std::span<const int> penCodes;  // number of the code that holds: the element's own or the last one before
    std::span<const int> symbolCodes;  // S; 0 for none
    std::span<const double> valuesM;   // 1 for none
    std::span<const double> valuesR;   // 0 for none
    std::span<const double> valuesU;   // 0 for none
    bool hasValues = false;            // an element has one of these four

    Code CodeAt(size_t element) const { return {codes[element], codeNumbers[element]}; }

    // The strokes that pass through the points: type P begins one, every other element ends a straight
    // segment. They are split where the code changes: a code holds until the next one in the line, and a
    // segment has the code of the element where it ends. Neighbours share the point where they meet.
    std::span<const Stroke> strokes;
    // The same not split, each with the code of its first segment.
    std::span<const Stroke> wholeStrokes;

    std::span<const PlacedSymbol> symbols;  // where the reading places them

    // Points that are no place are left out and a stroke breaks there; the code of such an element holds all
    // the same.
    size_t pointsLeftOut = 0;
};

// Why a text cannot be shown.
enum class TextFault : uint8_t { none, place, size, rotation };

struct MapText {
    int layer = 0;
    std::string_view layerName;
    int fileLine = 0;       // on which it begins, from 1
    std::string_view text;  // UTF-8
    Point point;
    int code = 0;  // K value; 0: none
    int valueD = 0;
    int valueF = 0;
    double valueU = 0;
    double height = 0;         // of a capital letter, in units of the ground: H value times map scale / 1000
    double heightOnPaper = 0;  // mm: the H value
    double rotation = 0;       // degrees counter-clockwise, of the reading direction from the right
    Anchor anchor;
    Face face;
    TextFault fault = TextFault::none;
};

// That of the first thing that is wrong with it.
TextFault FaultOf(const MapText& text);
// A symbol's scale, and its rotation in degrees.
bool IsDrawable(double scale, double rotation);

constexpr double largestScale = 1e3;  // of a symbol
constexpr double tallestText = 1e3;   // mm on paper

// Coordinates that are numbers, and no farther than 1,000,000 km.
bool IsPlace(Point point);

// The map scale, or 1000 when it is none.
bool IsScale(double scale);
inline double UsableScale(double scale) {
    return IsScale(scale) ? scale : 1000;
}

// Whether a reading places the symbols of lines.
enum class Symbols : bool { leftAlone, placed };

class Reading {
  public:
    // The importer is opened before the first element is read, and may be opened again for the next file.
    explicit Reading(Importer& importer, client::Encoding encoding = client::Encoding::windows1250,
                     AngleUnit angleUnit = AngleUnit::gon, Symbols symbols = Symbols::placed);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    // Reads the next element into Line() or Text(), as the importer does.
    ElementKind Next() {
        const ElementKind kind = importer.Next();
        Take(kind);
        return kind;
    }
    // The element that the importer has just read.
    void Take(ElementKind kind) {
        if (importer.AxisOrientation() != orientation) [[unlikely]]
            Orient();
        if (kind == ElementKind::line) TakeLine();
        if (kind == ElementKind::text) TakeText();
    }
    const MapLine& Line() const { return line; }
    const MapText& Text() const { return text; }

    // Knows of the bytes of texts and codes that are no characters of the encoding, in all elements read.
    const client::TextDecoder& Decoder() const { return decoder; }

  private:
    // An entry for each element of a line; room is used again from line to line.
    struct LineArrays {
        size_t room = 0;
        std::vector<Point> points;
        std::vector<char> types;
        std::vector<const char*> codes;
        std::vector<int> codeNumbers, penCodes, symbolCodes;
        std::vector<double> valuesM, valuesR, valuesU;
        // Of lines without values.
        std::vector<int> noSymbols;
        std::vector<double> ones, zeros;

        void MakeRoom(size_t count, VkmLine& target);
        void MoveElement(size_t from, size_t to, bool withValues);
        void AddKeyFields(size_t element, size_t from, bool withValues);
    };

    void Orient();
    void FetchLine();
    void TakeLine();
    bool TakePlainLine();
    size_t TakeElements();
    void HandOut(size_t count, std::span<const int> penCodes);
    void TakeText();
    void SetCode(const char*& bytes);
    void GoTo(size_t point, bool begins);
    void EndStroke(size_t end);
    void PlaceSymbol(size_t element);

    Importer& importer;
    client::TextDecoder decoder;
    AngleUnit unit;
    Symbols symbolsWanted;
    int orientation;  // that rotation was made for
    Rotation rotation;

    VkmLine raw{};
    LineArrays arrays;
    MapLine line;
    Stroke plainStroke;  // of a line that has but one
    std::vector<Stroke> strokes;
    std::vector<Stroke> wholeStrokes;
    std::vector<PlacedSymbol> symbols;
    std::deque<std::string> decodedCodes;  // those that are not plain ASCII; the first ones are in use
    size_t decodedCount = 0;
    Code held;                        // the code that holds
    const char* heldBytes = nullptr;  // where the file's bytes of it stand, where they are its text
    size_t heldCode = 0;              // counts its changes in the line
    // The stroke in progress, where its parts begin among the strokes, and the part that has one code.
    size_t strokeBegin = 0;
    size_t wholeBegin = 0;
    size_t partBegin = 0;
    size_t partHeldCode = 0;  // heldCode at its last point
    Code partCode;            // the code at its last point, once another one holds

    MapText text;
    std::string decodedText;
};

}  // namespace vemrado::map
