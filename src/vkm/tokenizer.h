// Splits a line of a VKM file into the four kinds of field that records are made of.
//
// A cursor over one line, whose characters belong to the line reader and stay valid until its next line. Up
// to platform::searchSlack characters behind the line may be looked at. Fields are views into the line; a
// view without data (nullptr) is none. Every operation moves forward only, so the order of the calls is the
// order of the fields on the line.
//
// The line's start is scanned once; from then on a field is taken by counting bits. A line longer than that
// is scanned again further on.

#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "vkm/characters.h"
#include "vkm/line_scan.h"

namespace vemrado {

using Field = std::string_view;

inline bool IsNone(Field field) {
    return field.data() == nullptr;
}

// What a line's first field says: one of these, or the letter of a known record.
enum RecordClass : uint32_t { emptyLine = 0, unknownRecord = 1, continuationLine = 2 };

// Only the first two characters of the field are looked at.
inline uint32_t ClassifyRecord(Field field) {
    if (IsNone(field)) return emptyLine;
    if (field[0] != '&') return continuationLine;
    if (field.size() < 2 || !Is(field[1], recordLetter)) return unknownRecord;
    return static_cast<unsigned char>(field[1]);
}

class CVKMTokenizer {
  public:
    CVKMTokenizer() = default;

    // A line of at most scannedCharacters whose fields are known.
    CVKMTokenizer(const char* line, size_t length, uint64_t fields)
        : window(line), rest(line + length), end(rest), edges(EdgesOf(fields)) {}

    explicit CVKMTokenizer(std::string_view line) : rest(line.data()), end(rest + line.size()) { Look(); }

    // The next field, or none.
    Field NextToken() {
        if (edges == 0) return rest == end ? Field() : NextTokenOfRest();
        const uint32_t start = TakeEdge();
        const uint32_t stop = TakeEdge();
        return Field(window + start, stop - start);
    }

    // What no field has taken yet, without the blanks before it where they were looked at.
    std::string_view Rest() const {
        const char* at = edges != 0 ? window + __builtin_ctzll(edges) : rest;
        return {at, static_cast<size_t>(end - at)};
    }

    // The next quoted text, or none; whatever stands before its opening quote is passed over. Without a
    // closing quote the text runs to the end of the line.
    Field NextQuoted() {
        const char* at = edges != 0 ? window + __builtin_ctzll(edges) : rest;
        while (at != end && !Is(*at, quoteCharacter)) ++at;
        if (at == end || at + 1 == end) {
            MoveTo(end);
            return Field();
        }
        const char* start = at + 1;
        const char* stop = FindCharacter(*at, start, end);
        MoveTo(stop == end ? end : stop + 1);
        return Field(start, static_cast<size_t>(stop - start));
    }

    // The value of the next field of the form K=value whose letter is of the class, with that letter; or
    // none. Blanks may stand around the equals sign. Other fields are passed over.
    Field NextKeyValue(CharacterClass keys, char& key) {
        Field field;
        while (!IsNone(field = NextToken())) {
            if (!Is(field[0], keys)) continue;
            key = field[0];
            if (field.size() > 2 && field[1] == '=') [[likely]]
                return field.substr(2);
            Field equals = field.size() > 1 ? field.substr(1) : NextToken();
            if (IsNone(equals)) break;
            if (equals[0] == '=') return equals.size() > 1 ? equals.substr(1) : NextToken();
        }
        return Field();
    }

  private:
    // Where fields start and, one behind them, end.
    static constexpr uint64_t EdgesOf(uint64_t fields) { return fields ^ fields << 1; }

    // The place of the next edge, which is passed.
    uint32_t TakeEdge() {
        const auto place = static_cast<uint32_t>(__builtin_ctzll(edges));
        edges &= edges - 1;
        return place;
    }

    // Goes on at a character behind the fields taken so far, or at the end.
    void MoveTo(const char* place) {
        if (place < rest) {
            const auto index = static_cast<size_t>(place - window);
            edges &= ~uint64_t{1} << index;
            if (!Is(*place, blankCharacter)) edges |= uint64_t{1} << index;
        } else {
            rest = place;
            Look();
        }
    }

    // Both by value, so that the tokenizer of a short line stays in registers.
    void Look() { *this = Looked(*this); }
    Field NextTokenOfRest() {
        const auto [field, line] = FieldOfRest(*this);
        *this = line;
        return field;
    }

    // Marks the fields in the characters at rest. A field that goes on behind them is left for later.
    static CVKMTokenizer Looked(CVKMTokenizer line);
    // Takes a field at rest, of any length.
    static std::pair<Field, CVKMTokenizer> FieldOfRest(CVKMTokenizer line);

    const char* window = nullptr;
    const char* rest = nullptr;  // where the characters end whose fields are marked
    const char* end = nullptr;
    uint64_t edges = 0;  // bit i: at window[i] a field that is not taken yet starts, or one has ended
};

}  // namespace vemrado
