// Splits a line of a VKM file into the four kinds of field that records are made of.
//
// A cursor over one line, whose characters belong to the line reader and stay valid until its next line. Up
// to platform::searchSlack characters behind the line may be looked at. Fields are views into the line; a
// view without data (nullptr) is none. Every operation moves forward only, so the order of the calls is the
// order of the fields on the line.

#pragma once

#include <cstdint>
#include <string_view>

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
    CVKMTokenizer(const char* line, size_t length, uint64_t fieldsOfLine)
        : cursor(line), end(line + length), seenEnd(end), fields(fieldsOfLine) {}

    explicit CVKMTokenizer(std::string_view line) : cursor(line.data()), end(line.data() + line.size()) {
        Look();
    }

    // The next field, or none.
    Field NextToken() {
        if (!SkipBlanks()) return Field();
        const char* start = cursor;
        SkipField();
        return Field(start, static_cast<size_t>(cursor - start));
    }

    // The next quoted text, or none; whatever stands before its opening quote is passed over. Without a
    // closing quote the text runs to the end of the line.
    Field NextQuoted() {
        while (cursor != end && !Is(*cursor, quoteCharacter)) ++cursor;
        Field text;
        if (cursor != end && cursor + 1 != end) {
            const char* start = cursor + 1;
            const char* stop = start;
            while (stop != end && *stop != *cursor) ++stop;
            text = Field(start, static_cast<size_t>(stop - start));
            cursor = stop == end ? end : stop + 1;
        } else {
            cursor = end;
        }
        Look();
        return text;
    }

    // The value of the next field of the form K=value whose letter is of the class, with that letter; or
    // none. Blanks may stand around the equals sign. Other fields are passed over.
    Field NextKeyValue(CharacterClass keys, char& key) {
        while (SkipBlanks()) {
            if (Is(*cursor, keys)) {
                key = *cursor;
                Step();
                if (!SkipBlanks()) return Field();
                if (*cursor == '=') {
                    Step();
                    return NextToken();
                }
            }
            SkipField();
        }
        return Field();
    }

  private:
    // Marks the fields among the characters from the cursor on.
    void Look() { *this = Looked(*this); }

    // By value, so that the tokenizer of a short line stays in registers.
    [[gnu::noinline]] static CVKMTokenizer Looked(CVKMTokenizer line) {
        line.MarkFields();
        return line;
    }

    void MarkFields() {
        const auto left = static_cast<size_t>(end - cursor);
        const size_t seen = left < scannedCharacters ? left : scannedCharacters;
        seenEnd = cursor + seen;
        fields = ScanLine(cursor).fields & LowBits(seen);
    }

    void Step() {
        ++cursor;
        fields >>= 1;
    }

    // False when the line has run out.
    bool SkipBlanks() {
        while (fields == 0) {
            cursor = seenEnd;
            if (cursor == end) return false;
            Look();
        }
        const int skipped = __builtin_ctzll(fields);
        cursor += skipped;
        fields >>= skipped;
        return true;
    }

    void SkipField() {
        const int length = __builtin_ctzll(~fields);
        cursor += length;
        fields >>= length;
        if (cursor == seenEnd && cursor != end) [[unlikely]] {
            while (cursor != end && !Is(*cursor, blankCharacter)) ++cursor;
            Look();
        }
    }

    const char* cursor = nullptr;
    const char* end = nullptr;
    const char* seenEnd = nullptr;  // end of the characters that the mask tells of
    uint64_t fields = 0;            // bit i: cursor[i] belongs to a field
};

}  // namespace vemrado
