// Lines with their elements, and texts.

#include "map/checked_reading.h"
#include "map/number_text.h"

namespace vemrado::map {
namespace {

constexpr LetterSet elementTypes("CKLPR");
constexpr LetterSet lineKeys("KMRSUX");
constexpr LetterSet textKeys("DFHKUX");
constexpr size_t longestText = 255;

// Size and F value of texts on layer 7.
struct TextDefault {
    int code;
    double valueH;
    int valueF;
};
constexpr TextDefault textDefaults[] = {
    {1001, 8.5, 6}, {1002, 5.0, 4}, {1004, 6.7, 4}, {1005, 4.4, 4}, {1007, 2.3, 2},
    {1008, 1.4, 2}, {1009, 4.4, 4}, {1010, 2.9, 2}, {1012, 8.5, 7}, {1013, 4.4, 3},
    {1014, 3.4, 1}, {1015, 2.3, 1}, {1018, 1.7, 1},
};

// K=..., or a lone letter before an equals sign.
bool StartsKeyField(Field field, FieldCursor behind) {
    if (!IsLetter(field[0])) return false;
    if (field.size() > 1) return field[1] == '=';
    const Field next = behind.NextToken();
    return !IsNone(next) && next[0] == '=';
}

bool TwoNumbersFollow(FieldCursor cursor) {
    return StartsNumber(cursor.NextToken()) && StartsNumber(cursor.NextToken());
}

}  // namespace

// --- Lines ---

void CheckedReading::StartLine() {
    StartVertex(cursor.NextToken());
}

void CheckedReading::StartVertex(Field type) {
    CheckType(type);
    ResetVertex();
    vertex.place = line.PlaceOf(IsNone(type) ? line.text.data() : type.data());
    vertex.type = IsNone(type) ? 0 : elementTypes.Has(type[0]) ? type[0] : 1;
    vertex.point = ReadPoint();
    vertex.hasPoint = true;
    place = vertex.point;
    ReadKeys(lineKeys, true);
    vertexPending = true;
}

// The code keeps its memory.
void CheckedReading::ResetVertex() {
    static const CheckedVertex defaults;
    vertex.place = defaults.place;
    vertex.point = defaults.point;
    vertex.hasPoint = defaults.hasPoint;
    vertex.type = defaults.type;
    vertex.code.clear();
    vertex.valueM = defaults.valueM;
    vertex.valueR = defaults.valueR;
    vertex.symbolCode = defaults.symbolCode;
    vertex.valueU = defaults.valueU;
    keysSeen = 0;
}

void CheckedReading::CheckType(Field type) {
    if (IsNone(type) || StartsNumber(type)) {
        if (IsNone(type)) {
            ReportMissing(Rule::elementWithoutType);
        } else {
            Report(Rule::elementWithoutType, type);
        }
        quiet = true;
    } else if (!elementTypes.Has(type[0])) {
        Report(Rule::unknownType, type);
    } else if (StartsKeyField(type, cursor)) {
        Report(Rule::keyAsType, type, std::string(1, type[0]));
        quiet = true;
    } else if (type.size() > 1) {
        Report(Rule::longType, type, std::string(1, type[0]));
    }
}

// Key fields for the element before the line. Where that has been handed over already, they make one of their
// own out of nothing.
void CheckedReading::ContinueVertex() {
    if (!vertexPending) {
        Report(Rule::phantomElement, IsNone(first) ? line.text.substr(0, 0) : first);
        quiet = true;
        ResetVertex();
        vertex.place = line.PlaceOf(line.text.data());
    } else {
        place = vertex.point;
    }
    vertexPending = true;
    if (IsNone(first)) return;
    CheckFirstField();
    const bool found = ReadKeys(lineKeys, false);
    if (!found && waiting.empty()) Report(Rule::unreadField, first);
}

// The first field of a line that goes on with an element is used up.
void CheckedReading::CheckFirstField() {
    const bool inLine = state == 'L';
    const bool point = TwoNumbersFollow(cursor);
    if (inLine && StartsNumber(first) && StartsNumber(FieldCursor(cursor).NextToken())) {
        Report(Rule::elementWithoutType, first);
        quiet = true;
    } else if (inLine && IsLetter(first[0]) && point) {
        Report(Rule::unknownType, first);
        quiet = true;
    } else if (!inLine && elementTypes.Has(first[0]) && point) {
        Report(Rule::strayContinuation, first);
        quiet = true;
    } else if (StartsKeyField(first, cursor)) {
        Report(Rule::leadingKey, first);
    }
}

// --- Texts ---

void CheckedReading::StartText() {
    text = {};
    keysSeen = 0;
    text.place = line.PlaceOf(first.data());
    text.point = ReadPoint();
    place = text.point;
    ReadQuoted();
    ReadKeys(textKeys, false);
    ApplyTextDefaults();
}

void CheckedReading::ReadQuoted() {
    const FieldCursor before = cursor;
    const QuotedText quoted = cursor.NextQuoted();
    if (quoted.quote == cursor.End()) {
        const Field instead = FieldCursor(before).NextToken();
        if (IsNone(instead)) {
            ReportMissing(Rule::textWithoutQuotes);
        } else {
            Report(Rule::textWithoutQuotes, instead);
        }
        return;
    }
    CheckBeforeText(FieldCursor({before.At(), static_cast<size_t>(quoted.quote - before.At())}));
    const Field whole(quoted.quote, static_cast<size_t>(cursor.At() - quoted.quote));
    if (!quoted.closed) {
        Report(Rule::textUnclosed, whole, std::string(1, *quoted.quote));
    } else if (quoted.text.size() > longestText) {
        Report(Rule::textTooLong, whole, std::to_string(quoted.text.size()));
    }
    if (!IsNone(quoted.text)) text.text = quoted.text.substr(0, longestText);
}

// What stands between the point and its text is lost.
void CheckedReading::CheckBeforeText(FieldCursor between) {
    KeyField found;
    for (bool isCoordinate = true; between.NextKeyField(textKeys, found);) {
        isCoordinate = isCoordinate && StartsNumber(found.field);
        if (found.kind != KeyField::Kind::passedOver) {
            Report(Rule::keysBeforeText, found.field);
        } else if (isCoordinate) {
            Report(Rule::surplusCoordinate, found.field);
        } else {
            Report(Rule::unreadField, found.field);
        }
    }
}

void CheckedReading::ContinueText() {
    place = text.point;
    if (!IsNone(first)) {
        CheckFirstField();
        const bool found = ReadKeys(textKeys, false);
        if (!found && waiting.empty()) Report(Rule::unreadField, first);
    }
    ApplyTextDefaults();
}

void CheckedReading::ApplyTextDefaults() {
    if (text.code != 0 && layer.number == 7) {
        for (const TextDefault& row : textDefaults) {
            if (row.code != text.code) continue;
            text.valueH = row.valueH;
            text.valueF = row.valueF;
        }
    } else if (text.code == 0 && (layer.number == 2 || layer.number == 8)) {
        text.code = layer.number == 2 ? 18 : 1016;
        text.valueF = layer.number == 2 ? 1 : 2;
        text.valueH = 1.7;
    }
}

// --- Points ---

// The file's first coordinate is y.
Point CheckedReading::ReadNumbers() {
    firstNumber = cursor.NextToken();
    const FieldCursor behindFirst = cursor;
    secondNumber = cursor.NextToken();
    Point point;
    point.y = Coordinate(firstNumber, behindFirst);
    if (!IsNone(firstNumber)) point.x = Coordinate(secondNumber, cursor);
    return point;
}

Point CheckedReading::ReadPoint() {
    Point point = ReadNumbers();
    if (relative) {
        header.UseOrigin();
        point.x += originX;
        point.y += originY;
    }
    if (known != nullptr) CheckExtent(point);
    return point;
}

// The extent of the Czech Republic in S-JTSK. What is wrong with the point otherwise has been told.
void CheckedReading::CheckExtent(Point point) {
    constexpr double leastY = 430000, mostY = 905000, leastX = 935000, mostX = 1230000;
    if (!waiting.empty() || quiet || header.OriginMissed()) return;
    if (!(point.y >= leastY && point.y <= mostY)) {
        Report(Rule::outsideCountry, firstNumber);
    } else if (!(point.x >= leastX && point.x <= mostX)) {
        Report(Rule::outsideCountry, secondNumber);
    }
}

// A field that is none, such as a key field behind a coordinate that is missing, counts as 0 and is used up.
double CheckedReading::Coordinate(Field field, FieldCursor behind) {
    if (IsNone(field)) {
        ReportMissing(Rule::missingCoordinate);
        return 0;
    }
    if (!StartsKeyField(field, behind) && !IsQuote(field[0])) return Real(field, field);
    Report(Rule::missingCoordinate, field);
    quiet = true;
    return Real(field, field);
}

}  // namespace vemrado::map
