// Key fields, numbers, and what a line holds that nobody reads.

#include <algorithm>
#include <cmath>
#include <utility>

#include "map/checked_reading.h"
#include "map/number_text.h"

namespace vemrado::map {
namespace {

bool IsBlankBefore(const char* value) {
    return IsBlank(value[-1]);
}

}  // namespace

// --- Key fields ---

// Reads the key fields of the rest of the line in their order; a later one overwrites an earlier one. True
// when there was one.
bool CheckedReading::ReadKeys(LetterSet keys, bool behindPoint) {
    bool any = false;
    KeyField found;
    while (cursor.NextKeyField(keys, found)) {
        if (found.kind == KeyField::Kind::value) {
            any = true;
            TakeKey(found);
        } else if (found.kind == KeyField::Kind::noValue) {
            Report(Rule::keyWithoutValue, found.field);
        } else if (found.kind == KeyField::Kind::noEquals) {
            Report(Rule::keyWithoutEquals, found.field.substr(0, 1));
        } else if (behindPoint && StartsNumber(found.field)) {
            Report(Rule::surplusCoordinate, found.field);
            continue;
        } else {
            CheckPassedOver(found);
        }
        behindPoint = false;
    }
    return any;
}

void CheckedReading::TakeKey(const KeyField& found) {
    const uint32_t bit = uint32_t{1} << (found.key - 'A');
    const Field value = found.value;
    if (value.size() > 1 && IsLetter(value[0]) && value[1] == '=' && IsBlankBefore(value.data())) {
        Field upToEquals(found.field.data(), static_cast<size_t>(value.data() - found.field.data()));
        while (IsBlank(upToEquals.back())) upToEquals.remove_suffix(1);
        Report(Rule::keyWithoutValue, upToEquals, std::string(value));
        quiet = true;
    } else if ((keysSeen & bit) != 0) {
        Report(Rule::repeatedKey, found.field);
    }
    keysSeen |= bit;
    if ((opened > continuation ? opened : state) == 'L') {
        TakeLineKey(found);
    } else {
        TakeTextKey(found);
    }
}

void CheckedReading::TakeLineKey(const KeyField& found) {
    switch (found.key) {
        case 'K':
            vertex.code = found.value;
            CheckLineCode(found);
            break;
        case 'M':
            vertex.valueM = Real(found.value, found.field);
            CheckSize(vertex.valueM, found);
            break;
        case 'R':
            vertex.valueR = Real(found.value, found.field);
            break;
        case 'S':
            vertex.symbolCode = Integer(found.value, found.field);
            if (known != nullptr && vertex.symbolCode != 0)
                CheckKnown(Rule::unknownSymbol, known->symbols, vertex.symbolCode, found.field);
            break;
        case 'U':
            vertex.valueU = Real(found.value, found.field);
            CheckRotation(vertex.valueU, found);
            break;
        default:
            break;  // X is passed over
    }
}

void CheckedReading::TakeTextKey(const KeyField& found) {
    switch (found.key) {
        case 'D':
            text.valueD = Integer(found.value, found.field);
            break;
        case 'F':
            text.valueF = Integer(found.value, found.field);
            break;
        case 'H':
            text.valueH = Real(found.value, found.field);
            CheckSize(text.valueH, found);
            break;
        case 'K':
            text.code = Integer(found.value, found.field);
            break;
        case 'U':
            text.valueU = Real(found.value, found.field);
            CheckRotation(text.valueU, found);
            break;
        default:
            break;
    }
}

// --- Numbers ---

// Of a whole field, or of the value of a key field.
double CheckedReading::Real(Field number, Field field) {
    const RealText read = ReadReal(number);
    if (read.length == 0) {
        Report(Rule::noNumber, field, std::string(number));
    } else if (read.length < number.size()) {
        Report(Rule::numberCut, field, std::string(number), std::string(number.substr(0, read.length)));
    } else if (!std::isfinite(read.value)) {
        Report(StartsNumber(number) ? Rule::numberRange : Rule::numberNotFinite, field, std::string(number));
    }
    return read.value;
}

int CheckedReading::Integer(Field number, Field field) {
    const IntegerText read = ReadInteger(number);
    if (read.length == 0) {
        Report(Rule::noNumber, field, std::string(number));
    } else if (read.length < number.size()) {
        Report(Rule::numberCut, field, std::string(number), std::string(number.substr(0, read.length)));
    } else if (read.outOfRange) {
        Report(Rule::numberRange, field, std::string(number));
    }
    return read.value;
}

// The code of a line is kept as text, but looked up as the number at its start.
void CheckedReading::CheckLineCode(const KeyField& found) {
    const Field value = found.value;
    const int code = known != nullptr ? ReadInteger(value).value : lastCode;
    if (code != lastCode) CheckKnown(Rule::unknownCode, known->lines, code, found.field);
    if (!IsDigit(value[0])) return;
    const auto end = std::find_if_not(value.begin(), value.end(), IsDigit);
    if (end != value.end())
        Report(Rule::numberCut, found.field, std::string(value), std::string(value.begin(), end));
}

// --- Values ---

void CheckedReading::CheckKnown(Rule rule, const std::vector<int>& codes, int code, Field field) {
    const bool told = !waiting.empty() && waiting.back().field.data() == field.data();
    if (codes.empty() || told) return;
    if (!std::binary_search(codes.begin(), codes.end(), code))
        return Report(rule, field, std::to_string(code));
    if (rule == Rule::unknownCode) lastCode = code;
}

void CheckedReading::CheckRotation(double value, const KeyField& found) {
    constexpr double fullTurn = 400;  // gon
    if (known != nullptr && std::abs(value) > fullTurn && std::isfinite(value))
        Report(Rule::rotationRange, found.field, std::string(found.value));
}

void CheckedReading::CheckSize(double value, const KeyField& found) {
    constexpr double largest = 100;
    if (known != nullptr && (value <= 0 || value > largest) && std::isfinite(value))
        Report(Rule::sizeRange, found.field, std::string(found.value));
}

// --- What nobody reads ---

// A field that is no key field of the record.
void CheckedReading::CheckPassedOver(const KeyField& found) {
    const Field field = found.field;
    if (field.data() < namedTo) return;
    const size_t equals = field.find('=');
    const bool letters =
        IsLetter(field[0]) &&
        std::all_of(field.begin(),
                    field.begin() + static_cast<std::ptrdiff_t>(std::min(equals, field.size())), IsLetter);
    FieldCursor behind = cursor;
    const Field next = behind.NextToken();
    if (letters && equals != Field::npos) {
        Report(Rule::unknownKey, field);
        if (equals + 1 == field.size() && !IsNone(next) && next.find('=') == Field::npos)
            namedTo = next.data() + 1;
    } else if (letters && field.size() == 1 && !IsNone(next) && next[0] == '=') {
        Report(Rule::unknownKey, field);
        const Field value = next.size() > 1 ? next : behind.NextToken();
        namedTo = IsNone(value) ? line.text.data() + line.text.size() : value.data() + 1;
    } else if (found.key != 0 && StartsNumber(field.substr(1))) {
        Report(Rule::keyWithoutEquals, field);
    } else {
        Report(Rule::unreadField, field);
    }
}

// All that is left of a line without key fields.
void CheckedReading::CheckUnread() {
    for (Field field = cursor.NextToken(); !IsNone(field); field = cursor.NextToken())
        Report(Rule::unreadField, field);
}

// A line that belongs to no record that could go on. The rest of a long comment is one too, and harmless.
void CheckedReading::CheckStray() {
    if (line.firstColumn > 1 && state == '*') return;
    if (recordSeen) return Report(Rule::strayContinuation, first);
    if (firstStray) return;
    firstStrayField = first;
    firstStray = Finding{Rule::strayContinuation, line.PlaceOf(first.data()), {}, {}, std::nullopt};
}

void CheckedReading::CheckLayer() {
    if (layerGiven) return;
    layerGiven = true;
    Report(Rule::unknownLayer, first, "0");
}

// What the file lacks at its end, or has behind it.
void CheckedReading::CheckEnd() {
    if (state == 'K') {
        while (NextLine()) {
            waiting.clear();
            if (IsNone(first)) continue;
            Report(Rule::afterClosingRecord, first);
            break;
        }
        SendFindings();
    } else if (!recordSeen && firstStray) {
        findings.Take({Rule::notVkm, {}, {}, {"not a VKM file (no line opens a record)", {}}, std::nullopt});
        return;
    } else if (const auto stop = lines.EndCharacter()) {
        findings.Take({Rule::endCharacter, *stop, {}, {}, std::nullopt});
    } else {
        findings.Take({Rule::noClosingRecord, lines.LastPlace(), {}, {}, std::nullopt});
    }
    header.FileEnd();
}

// --- Findings ---

void CheckedReading::Report(Rule rule, Field field, std::string one, std::string two) {
    if (!quiet)
        waiting.push_back({rule, line.PlaceOf(field.data()), field, {std::move(one), std::move(two)}, {}});
}

void CheckedReading::ReportMissing(Rule rule, std::string argument) {
    const size_t last = line.text.find_last_not_of(" \t");
    const size_t end = last == std::string_view::npos ? 0 : last + 1;
    Report(rule, line.text.substr(end, 0), std::move(argument));
}

void CheckedReading::SendFindings() {
    for (Finding& finding : waiting) {
        finding.point = place;
        findings.Take(finding);
    }
    waiting.clear();
}

}  // namespace vemrado::map
