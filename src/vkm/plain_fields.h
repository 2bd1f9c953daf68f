// Lines in the plain form, that of nearly every line: known key fields only, blanks between fields, no tabs,
// fewer than 64 characters. They are read where they stand in the file's buffer, each field by one count of
// bits. Whatever is not in this form is left to the record parsers, which read every form.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/numbers.h"
#include "vkm/line_reader.h"
#include "vkm/line_scan.h"
#include "vkm/tokenizer.h"

namespace vemrado {

// Whether it is a field of the form K=value with a key of the class.
inline bool IsPlainKey(Field field, CharacterClass keys) {
    return field.size() > 2 && field[1] == '=' && Is(field[0], keys);
}

// A cursor over the fields of a line that may turn out not to be plain.
class PlainFields {
  public:
    // Behind the line's mark.
    PlainFields(const char* line, size_t start)
        : text(line), next(start), ends(BlanksAndControls(line) & ~LowBits(start)) {}

    // The next field. Empty at the line's end, and when the field ends behind the characters that were looked
    // at.
    Field Take() {
        while (text[next] == ' ') [[unlikely]] {
                ends &= ends - 1;
                ++next;
            }
        if (ends == 0) [[unlikely]]
            return Field();
        const auto stop = numbers::LowestBit(ends);
        const Field field(text + next, stop - next);
        ends &= ends - 1;
        next = stop + 1;
        return field;
    }

    // The two numbers of a point, the second coordinate first. False for any other fields.
    [[gnu::always_inline]] bool TakePoint(double& x, double& y) {
        const uint64_t fullStops = PlacesOf<scannedForFullStops>('.', text);
        const Field first = Take();
        if (!GoesOn()) return false;
        const Field second = Take();
        const uint64_t others = fullStops & (fullStops - 1);
        if (others == 0) return false;
        return numbers::ParsePlainPair(NumberIn(first, fullStops), NumberIn(second, others), y, x);
    }

    // A quoted text. False when the next character is no quote character, or the text is not closed.
    bool TakeQuoted(Field& quoted) {
        if (next >= lastOpening || !Is(text[next], quoteCharacter)) return false;
        const uint64_t lineFeeds = PlacesOf('\n', text);
        const uint64_t ofThisLine = ~lineFeeds & (lineFeeds - 1);
        const uint64_t closings =
            PlacesOf(text[next], text) & ofThisLine & LowBits(lastClosing + 1) & ~LowBits(next + 1);
        if (closings == 0) return false;
        const auto stop = numbers::LowestBit(closings);
        quoted = Field(text + next + 1, stop - next - 1);
        next = stop + 2;
        ends &= ~LowBits(next);
        return true;
    }

    // Whether a blank stands behind the field just taken.
    bool GoesOn() const { return text[next - 1] == ' '; }

    // Takes the line from the file. False when it does not end with the field just taken.
    bool TakeLine(CVKMLineReader& reader) const {
        size_t withLineEnd = next;
        if (text[next - 1] != '\n') [[unlikely]] {
            if (text[next - 1] != '\r' || text[next] != '\n') return false;
            ++withLineEnd;
        }
        if (withLineEnd > reader.Ahead().size()) return false;
        reader.TakeAhead(next - 1, withLineEnd);
        return true;
    }

  private:
    numbers::PlainNumber NumberIn(Field field, uint64_t fullStops) const {
        const char* const fullStop = text + numbers::LowestBit(fullStops);
        return {fullStop, static_cast<size_t>(fullStop - field.data()),
                static_cast<size_t>(field.data() + field.size() - fullStop - 1)};
    }

    // Two numbers and what stands before them are shorter.
    static constexpr int scannedForFullStops = 32;
    // So that what follows the text is within the 64 characters.
    static constexpr size_t lastClosing = 61;
    static constexpr size_t lastOpening = lastClosing;

    const char* text;
    size_t next;    // where the next field starts
    uint64_t ends;  // bit i: text[i] is a blank or a control character behind the fields taken
};

}  // namespace vemrado
