#include "map/reading.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vemrado::map {
namespace {

// Memory for the elements of one line is kept up to this many; a longer line's goes with it.
constexpr size_t keptElements = 65536;
constexpr size_t roomStep = 16;  // room is a multiple of it
constexpr size_t mostRoomKept = keptElements + roomStep;

template <class Value>
void Empty(std::vector<Value>& values) {
    values.clear();
    if (values.capacity() > keptElements) [[unlikely]]
        std::vector<Value>().swap(values);
}

template <class Value>
void MakeAnew(std::vector<Value>& values, size_t count, Value value = {}) {
    std::vector<Value>(count, value).swap(values);
}

// A code of the file.
struct CodeBytes {
    size_t length = 0;
    bool plain = true;  // ASCII
    int number = 0;     // as the module reads whole numbers
};

constexpr size_t surelyInRange = 9;  // digits

CodeBytes LookAtAnyCode(const char* bytes) {
    CodeBytes code;
    unsigned char all = 0;
    for (; bytes[code.length] != '\0'; ++code.length) all |= static_cast<unsigned char>(bytes[code.length]);
    code.plain = all < 0x80;
    code.number =
        static_cast<int>(std::clamp<long long>(std::strtoll(bytes, nullptr, 10), INT32_MIN, INT32_MAX));
    return code;
}

CodeBytes LookAt(const char* bytes) {
    CodeBytes code;
    for (; code.length < surelyInRange; ++code.length) {
        const auto digit = static_cast<unsigned int>(static_cast<unsigned char>(bytes[code.length])) - '0';
        if (digit > 9) break;
        code.number = code.number * 10 + static_cast<int>(digit);
    }
    if (bytes[code.length] == '\0') [[likely]]
        return code;
    return LookAtAnyCode(bytes);
}

// Exact: whether a value was given at all. No number is one too.
bool Given(double value, double standard) {
    return !(value == standard);
}

}  // namespace

bool IsPlace(Point point) {
    // False for what is not a number.
    return std::abs(point.x) <= farthestPlace && std::abs(point.y) <= farthestPlace;
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

Reading::Reading(Importer& source, client::Encoding encoding, AngleUnit angleUnit, Symbols placing)
    : importer(source),
      decoder(encoding),
      unit(angleUnit),
      symbolsWanted(placing),
      orientation(source.AxisOrientation()),
      rotation(angleUnit, orientation) {}

void Reading::Orient() {
    orientation = importer.AxisOrientation();
    rotation = Rotation(unit, orientation);
}

void Reading::LineArrays::MakeRoom(size_t count, VkmLine& target) {
    room = 0;  // should there be no memory
    target = {};
    count = (count / roomStep + 1) * roomStep;
    MakeAnew(points, count);
    MakeAnew(types, count + 1);
    MakeAnew(codes, count);
    for (auto* numbers : {&codeNumbers, &penCodes, &symbolCodes, &noSymbols}) MakeAnew(*numbers, count);
    for (auto* values : {&valuesM, &valuesR, &valuesU, &zeros}) MakeAnew(*values, count);
    MakeAnew(ones, count, 1.0);
    room = count;
    target.room = static_cast<int>(room);
    target.points = &points[0].x;
    target.types = types.data();
    target.codes = codes.data();
    target.symbolCodes = symbolCodes.data();
    target.valuesM = valuesM.data();
    target.valuesR = valuesR.data();
    target.valuesU = valuesU.data();
}

void Reading::LineArrays::MoveElement(size_t from, size_t to, bool withValues) {
    points[to] = points[from];
    types[to] = types[from];
    codes[to] = codes[from];
    if (!withValues) return;
    symbolCodes[to] = symbolCodes[from];
    valuesM[to] = valuesM[from];
    valuesR[to] = valuesR[from];
    valuesU[to] = valuesU[from];
}

// Key fields that stand apart from their element.
void Reading::LineArrays::AddKeyFields(size_t element, size_t from, bool withValues) {
    if (*codes[from] != '\0') codes[element] = codes[from];
    if (!withValues) return;
    if (symbolCodes[from] != 0) symbolCodes[element] = symbolCodes[from];
    if (Given(valuesM[from], 1)) valuesM[element] = valuesM[from];
    if (Given(valuesR[from], 0)) valuesR[element] = valuesR[from];
    if (Given(valuesU[from], 0)) valuesU[element] = valuesU[from];
}

// The line as the module has it, in the arrays.
void Reading::FetchLine() {
    while (true) {
        const bool fits = importer.Details().GetLine(&raw) != 0;
        const auto count = static_cast<size_t>(raw.count);
        if (fits && (arrays.room <= mostRoomKept || count > keptElements)) [[likely]]
            return;
        arrays.MakeRoom(count > keptElements ? count : std::min(2 * count, keptElements), raw);
    }
}

void Reading::TakeLine() {
    FetchLine();
    line.layer = raw.layer;
    line.layerName = {raw.layerName, static_cast<size_t>(raw.layerNameLength)};
    line.fileLine = raw.fileLine;
    line.pointsLeftOut = 0;
    line.hasValues = raw.hasValues != 0;
    if (line.hasValues) Empty(symbols);
    if (TakePlainLine()) [[likely]] {
        HandOut(static_cast<size_t>(raw.count), arrays.codeNumbers);
    } else {
        HandOut(TakeElements(), arrays.penCodes);
        line.strokes = strokes;
        line.wholeStrokes = wholeStrokes;
    }
    if (line.hasValues) {
        line.symbols = symbols;
    } else {
        line.symbols = {};
    }
}

void Reading::HandOut(size_t count, std::span<const int> penCodes) {
    arrays.types[count] = '\0';
    line.points = {arrays.points.data(), count};
    line.types = {arrays.types.data(), count};
    line.codes = {arrays.codes.data(), count};
    line.codeNumbers = {arrays.codeNumbers.data(), count};
    line.penCodes = penCodes.first(count);
    line.symbolCodes = {line.hasValues ? arrays.symbolCodes.data() : arrays.noSymbols.data(), count};
    line.valuesM = {line.hasValues ? arrays.valuesM.data() : arrays.ones.data(), count};
    line.valuesR = {line.hasValues ? arrays.valuesR.data() : arrays.zeros.data(), count};
    line.valuesU = {line.hasValues ? arrays.valuesU.data() : arrays.zeros.data(), count};
}

// Nearly every line is one stroke of one code. False, and nothing done, for any other.
bool Reading::TakePlainLine() {
    const auto count = static_cast<size_t>(raw.count);
    if ((raw.severalCodes | raw.beginsAgain | raw.hasNoType | raw.hasNoPlace) != 0 || count == 0)
        return false;
    const char* const bytes = arrays.codes[0];
    const CodeBytes code = LookAt(bytes);
    if (!code.plain) return false;
    plainStroke.count = count;
    plainStroke.code = {{bytes, code.length}, code.number};
    const std::span<const Stroke> whole(&plainStroke, count > 1 ? size_t{1} : 0);
    line.strokes = whole;
    line.wholeStrokes = whole;
    for (size_t i = 0; i < count; i += roomStep) std::fill_n(&arrays.codeNumbers[i], roomStep, code.number);
    if (line.hasValues && symbolsWanted == Symbols::placed) {
        held = plainStroke.code;
        for (size_t i = 0; i < count; ++i) PlaceSymbol(i);
    }
    return true;
}

// Moves the elements that have a place together at the start, and returns their number.
size_t Reading::TakeElements() {
    const auto count = static_cast<size_t>(raw.count);
    const bool withValues = line.hasValues;
    size_t kept = 0;
    bool begins = true;
    Empty(strokes);
    Empty(wholeStrokes);
    decodedCount = 0;
    heldBytes = nullptr;
    held = partCode = Code();
    heldCode = partHeldCode = strokeBegin = partBegin = wholeBegin = 0;
    for (size_t i = 0; i < count; ++i) {
        if (kept != i) arrays.MoveElement(i, kept, withValues);
        while (i + 1 < count && arrays.types[i + 1] == 0) arrays.AddKeyFields(kept, ++i, withValues);
        const bool given = *arrays.codes[kept] != '\0';
        if (given) SetCode(arrays.codes[kept]);
        if (arrays.types[kept] == 0) continue;  // the record gives no point
        if (!IsPlace(arrays.points[kept])) [[unlikely]] {
            ++line.pointsLeftOut;
            begins = true;
            continue;
        }
        arrays.codeNumbers[kept] = given ? held.number : 0;
        arrays.penCodes[kept] = held.number;
        GoTo(kept, begins || arrays.types[kept] == 'P');
        begins = false;
        if (withValues && symbolsWanted == Symbols::placed) PlaceSymbol(kept);
        ++kept;
    }
    EndStroke(kept);
    return kept;
}

// A code of the file becomes UTF-8, and holds from now on.
void Reading::SetCode(const char*& bytes) {
    if (bytes == heldBytes) return;
    const CodeBytes code = LookAt(bytes);
    std::string_view utf8(bytes, code.length);
    heldBytes = code.plain ? bytes : nullptr;
    if (!code.plain) [[unlikely]] {
        if (decodedCount == decodedCodes.size()) decodedCodes.emplace_back();
        std::string& decoded = decodedCodes[decodedCount++];
        decoded.clear();
        decoder.Append(utf8, decoded);
        utf8 = decoded;
        bytes = decoded.c_str();
    }
    if (utf8 == held.text) return;
    if (heldCode == partHeldCode) partCode = held;
    ++heldCode;
    held = {utf8, code.number};
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

// The symbol of an element, if it has one.
void Reading::PlaceSymbol(size_t element) {
    if (arrays.symbolCodes[element] == 0) return;
    PlacedSymbol symbol;
    symbol.element = element;
    symbol.point = arrays.points[element];
    symbol.symbol = arrays.symbolCodes[element];
    symbol.scale = arrays.valuesM[element];
    symbol.rotation = rotation.Degrees(arrays.valuesU[element]);
    symbol.mirrored = rotation.Mirrored();
    symbol.drawable = IsDrawable(symbol.scale, symbol.rotation);
    symbol.code = held;
    symbols.push_back(symbol);
}

void Reading::TakeText() {
    VkmText record;
    importer.Details().GetTextRecord(&record);
    text.layer = record.layer;
    text.layerName = {record.layerName, static_cast<size_t>(record.layerNameLength)};
    text.fileLine = record.fileLine;
    text.text = decoder.View({record.text, static_cast<size_t>(record.length)}, decodedText);
    text.point = {record.x, record.y};
    text.code = record.code;
    text.valueD = record.valueD;
    text.valueF = record.valueF;
    text.valueU = record.valueU;
    text.height = record.scaledH;
    text.heightOnPaper = record.scaledH * 1000 / importer.Scale();
    text.rotation = rotation.Degrees(record.valueU);
    text.anchor = AnchorOf(record.valueD, rotation.Mirrored());
    text.face = FaceOf(record.valueF);
    text.fault = FaultOf(text);
}

}  // namespace vemrado::map
