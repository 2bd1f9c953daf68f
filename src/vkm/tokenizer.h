// Splits a line of a VKM file into the four kinds of field that records are made of.
//
// A cursor over one line, whose characters belong to the line reader and stay valid until its next line.
// Fields are views into the line; a view without data (nullptr) is none. Every operation moves forward only,
// so the order of the calls is the order of the fields on the line.

#pragma once

#include <cstdint>
#include <string_view>

#include "vkm/characters.h"

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
    explicit CVKMTokenizer(std::string_view line) : cursor(line.data()), end(line.data() + line.size()) {}

    // The next field, or none.
    Field NextToken() {
        if (!SkipBlanks()) return Field();
        const char* start = cursor;
        SkipField();
        const Field token(start, static_cast<size_t>(cursor - start));
        if (cursor != end) ++cursor;
        return token;
    }

    // The next quoted text, or none; whatever stands before its opening quote is passed over. Without a
    // closing quote the text runs to the end of the line.
    Field NextQuoted() {
        while (cursor != end && !Is(*cursor, quoteCharacter)) ++cursor;
        if (cursor == end) return Field();
        const char quote = *cursor++;
        if (cursor == end) return Field();
        const char* start = cursor;
        while (cursor != end && *cursor != quote) ++cursor;
        const Field text(start, static_cast<size_t>(cursor - start));
        if (cursor != end) ++cursor;
        return text;
    }

    // The value of the next field of the form K=value whose letter is of the class, with that letter; or
    // none. Blanks may stand around the equals sign. Other fields are passed over.
    Field NextKeyValue(CharacterClass keys, char& key) {
        while (SkipBlanks()) {
            if (Is(*cursor, keys)) {
                key = *cursor++;
                if (!SkipBlanks()) return Field();
                if (*cursor == '=') {
                    ++cursor;
                    return NextToken();
                }
            }
            SkipField();
        }
        return Field();
    }

  private:
    // False when the line has run out.
    bool SkipBlanks() {
        while (cursor != end && Is(*cursor, blankCharacter)) ++cursor;
        return cursor != end;
    }

    void SkipField() {
        while (cursor != end && !Is(*cursor, blankCharacter)) ++cursor;
    }

    const char* cursor = nullptr;
    const char* end = nullptr;
};

}  // namespace vemrado
