// What can be wrong with a map file: the rules, and a finding of one with its place.

#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "map/geometry.h"
#include "map/translator.h"

namespace vemrado::map {

enum class Severity { note, warning, error };

inline constexpr std::array<std::string_view, 3> severityNames = {"note", "warning", "error"};

// In the order of the table in findings.cpp.
enum class Rule : uint8_t {
    // The file as a whole
    notVkm,
    noClosingRecord,
    afterClosingRecord,
    byteOrderMark,
    mixedLineEnds,
    // Bytes and lines
    zeroByte,
    endCharacter,
    badByte,
    loneCarriageReturn,
    lineTooLong,
    // Records
    unknownRecord,
    markRunOn,
    headerMissing,
    headerLate,
    headerDoubled,
    relativeWithoutOrigin,
    strayContinuation,
    recordReadAgain,
    unknownLayer,
    scaleRange,
    // Elements and their points
    elementWithoutType,
    unknownType,
    longType,
    keyAsType,
    phantomElement,
    missingCoordinate,
    surplusCoordinate,
    // Numbers
    noNumber,
    numberCut,
    numberRange,
    numberNotFinite,
    // Key fields and what nobody reads
    unknownKey,
    repeatedKey,
    keyWithoutValue,
    keyWithoutEquals,
    leadingKey,
    unreadField,
    // Texts
    textWithoutQuotes,
    textUnclosed,
    textTooLong,
    keysBeforeText,
    // Values
    outsideCountry,
    unknownCode,
    unknownSymbol,
    rotationRange,
    sizeRange,
    // The map as a whole; those from freeEnd on need its parcels
    farFromRest,
    pointWithoutSymbol,
    equalPoints,
    doubledSegment,
    textsOnEachOther,
    freeEnd,
    crossingWithoutPoint,
    parcelWithoutNumber,
    parcelWithNumbers,
    numberOutside,
    numberTwice,
    sliver,
    count
};

inline constexpr size_t ruleCount = static_cast<size_t>(Rule::count);
using RuleSet = std::bitset<ruleCount>;

struct RuleText {
    std::string_view name;
    Severity severity;
    std::string_view summary;  // one sentence
    // What is said of a finding, one sentence; %f is its field, %1 and %2 are its arguments.
    std::string_view message;
};

const RuleText& TextOf(Rule rule);

// The rule of a name; none when there is none.
std::optional<Rule> FindRule(std::string_view name);

// In the file: a line and a byte of it, both from 1.
struct Place {
    int64_t line = 1;
    int64_t column = 1;
};

struct Finding {
    Rule rule;
    Place place;
    std::string_view field;  // in the file's encoding; empty when there is none
    std::array<std::string, 2> arguments;
    std::optional<Point> point;  // x and y as orientation 1 has them, absolute
};

// Called with each finding; its field is valid during the call.
class FindingSink {
  public:
    virtual void Take(const Finding& finding) = 0;

  protected:
    ~FindingSink() = default;
};

// The sentence of a finding in UTF-8, without a full stop; field is the finding's in UTF-8.
std::string MessageOf(const Finding& finding, std::string_view field);

// The same in another language.
std::string MessageOf(const Finding& finding, std::string_view field, const Translator& translator);

}  // namespace vemrado::map
