#include "map/reading.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vemrado::map {
namespace {

constexpr double farthest = 1e9;  // m; farther is no place

// Memory for the points of one line is kept up to this many; a longer line's goes with it.
constexpr size_t keptPoints = 65536;

template <class Value>
void Empty(std::vector<Value>& values) {
    values.clear();
    if (values.capacity() > keptPoints) [[unlikely]]
        std::vector<Value>().swap(values);
}

// As the module reads whole numbers.
int NumberOf(const char* code) {
    return static_cast<int>(std::clamp<long long>(std::strtoll(code, nullptr, 10), INT32_MIN, INT32_MAX));
}

// Exact: whether a value was given at all. No number is one too.
bool Given(double value, double standard) {
    return !(value == standard);
}

// Key fields that stand apart from their element.
void AddKeyFields(VkmElement& element, const VkmElement& more) {
    if (*more.code != '\0') element.code = more.code;
    if (more.symbolCode != 0) element.symbolCode = more.symbolCode;
    if (Given(more.valueM, 1)) element.valueM = more.valueM;
    if (Given(more.valueR, 0)) element.valueR = more.valueR;
    if (Given(more.valueU, 0)) element.valueU = more.valueU;
}

}  // namespace

bool IsPlace(Point point) {
    // False for what is not a number.
    return std::abs(point.x) <= farthest && std::abs(point.y) <= farthest;
}

bool IsScale(double scale) {
    return scale >= 1 && scale <= 1e8;
}

TextFault FaultOf(const MapText& text) {
    if (!IsPlace(text.point)) return TextFault::place;
    if (!(text.heightOnPaper > 0 && text.heightOnPaper <= tallestText)) return TextFault::size;
    return std::isfinite(text.rotation) ? TextFault::none : TextFault::rotation;
}

bool IsDrawable(double scale, double rotation) {
    return scale > 0 && scale <= largestScale && std::isfinite(rotation);
}

Reading::Reading(Importer& source, client::Encoding encoding, AngleUnit angleUnit)
    : importer(source),
      decoder(encoding),
      unit(angleUnit),
      orientation(source.AxisOrientation()),
      rotation(angleUnit, orientation) {}

ElementKind Reading::Next() {
    const ElementKind kind = importer.Next();
    Take(kind);
    return kind;
}

void Reading::Take(ElementKind kind) {
    if (importer.AxisOrientation() != orientation) {
        orientation = importer.AxisOrientation();
        rotation = Rotation(unit, orientation);
    }
    if (kind == ElementKind::line) TakeLine();
    if (kind == ElementKind::text) TakeText();
}

void Reading::TakeLine() {
    const RawLine& raw = importer.Line();
    line.layer = raw.layer;
    line.layerName = raw.layerName;
    line.fileLine = raw.fileLine;
    Empty(points);
    Empty(codes);
    Empty(strokes);
    Empty(wholeStrokes);
    Empty(symbols);
    decodedCount = 0;
    held = partCode = Code();
    heldCode = partHeldCode = strokeBegin = partBegin = wholeBegin = 0;

    const std::span<VkmElement> elements = importer.LineElements();
    const size_t kept = TakeElements(elements);
    EndStroke(kept);
    line.points = points;
    line.elements = elements.first(kept);
    line.codes = codes;
    line.strokes = strokes;
    line.wholeStrokes = wholeStrokes;
    line.symbols = symbols;
}

// Moves the elements that have a place together at the start, and returns their number.
size_t Reading::TakeElements(std::span<VkmElement> elements) {
    size_t kept = 0;
    bool begins = true;
    line.pointsLeftOut = 0;
    for (size_t i = 0; i < elements.size(); ++i) {
        VkmElement& element = elements[kept];
        if (kept != i) element = elements[i];
        while (i + 1 < elements.size() && elements[i + 1].type == 0) AddKeyFields(element, elements[++i]);
        Code& code = codes.emplace_back();
        if (*element.code != '\0') SetCode(code, element.code);
        const Point point{element.x, element.y};
        if (element.type == 0 || !IsPlace(point)) [[unlikely]] {
            codes.pop_back();
            if (element.type == 0) continue;  // the record gives no point
            ++line.pointsLeftOut;
            begins = true;
            continue;
        }
        points.push_back(point);
        GoTo(kept, begins || element.type == 'P');
        begins = false;
        if (element.symbolCode != 0) AddSymbol(element, kept);
        ++kept;
    }
    return kept;
}

// Makes a code of bytes of the file, which holds from now on.
void Reading::SetCode(Code& code, const char* bytes) {
    size_t length = 0;
    unsigned char all = 0;
    for (; bytes[length] != '\0'; ++length) all |= static_cast<unsigned char>(bytes[length]);
    std::string_view utf8(bytes, length);
    if (all >= 0x80) [[unlikely]] {
        if (decodedCount == decodedCodes.size()) decodedCodes.emplace_back();
        std::string& decoded = decodedCodes[decodedCount++];
        decoded.clear();
        decoder.Append(utf8, decoded);
        utf8 = decoded;
    }
    if (utf8 != held.text) {
        if (heldCode == partHeldCode) partCode = held;
        ++heldCode;
        held.text = utf8;
        held.number = NumberOf(bytes);
    }
    code = held;
}

// The stroke goes on to a point, or begins there.
void Reading::GoTo(size_t point, bool begins) {
    if (begins) {
        EndStroke(point);
        strokeBegin = partBegin = point;
        wholeBegin = strokes.size();
    } else if (point - partBegin > 1 && heldCode != partHeldCode) {
        strokes.push_back({partBegin, point - partBegin, partCode});
        partBegin = point - 1;
    }
    partHeldCode = heldCode;
}

void Reading::EndStroke(size_t end) {
    const Code& code = heldCode == partHeldCode ? held : partCode;
    if (end - partBegin > 1) strokes.push_back({partBegin, end - partBegin, code});
    if (end - strokeBegin > 1) {
        wholeStrokes.push_back({strokeBegin, end - strokeBegin, strokes[wholeBegin].code});
    }
    strokeBegin = partBegin = end;
}

void Reading::AddSymbol(const VkmElement& element, size_t place) {
    PlacedSymbol symbol;
    symbol.element = place;
    symbol.point = points[place];
    symbol.symbol = element.symbolCode;
    symbol.scale = element.valueM;
    symbol.rotation = rotation.Degrees(element.valueU);
    symbol.mirrored = rotation.Mirrored();
    symbol.drawable = IsDrawable(symbol.scale, symbol.rotation);
    symbol.code = held;
    symbols.push_back(symbol);
}

void Reading::TakeText() {
    const RawText& raw = importer.Text();
    text.layer = raw.layer;
    text.layerName = raw.layerName;
    text.fileLine = raw.fileLine;
    decodedText.clear();
    decoder.Append(raw.text, decodedText);
    text.text = decodedText;
    text.point = raw.point;
    text.code = raw.code;
    text.valueD = raw.valueD;
    text.valueF = raw.valueF;
    text.valueU = raw.valueU;
    text.height = raw.scaledH;
    text.heightOnPaper = raw.scaledH * 1000 / importer.Scale();
    text.rotation = rotation.Degrees(raw.valueU);
    text.anchor = AnchorOf(raw.valueD, rotation.Mirrored());
    text.face = FaceOf(raw.valueF);
    text.fault = FaultOf(text);
}

}  // namespace vemrado::map
