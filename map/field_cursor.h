// The fields of a line, in the order in which a record asks for them.

#pragma once

#include <cstdint>
#include <string_view>

namespace vemrado::map {

// A field that is not there has a null pointer; an empty quoted text has not.
using Field = std::string_view;
inline bool IsNone(Field field) {
    return field.data() == nullptr;
}

inline bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

inline bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

inline bool IsQuote(char c) {
    return c == '"' || c == '\'' || c == '`' || c == '%';
}

// Capital letters.
class LetterSet {
  public:
    constexpr explicit LetterSet(std::string_view letters) {
        for (const char c : letters) bits |= uint32_t{1} << (c - 'A');
    }
    constexpr bool Has(char c) const { return c >= 'A' && c <= 'Z' && (bits >> (c - 'A') & 1) != 0; }

  private:
    uint32_t bits = 0;
};

struct QuotedText {
    Field text;         // none: there is no quote character, or nothing follows it
    const char* quote;  // the opening one; the end of the line when there is none
    bool closed = false;
};

// What stands where a key field could.
struct KeyField {
    enum class Kind {
        value,       // K=value
        passedOver,  // no key of the record
        noEquals,    // a key letter alone, and with it the field behind it
        noValue,     // K= at the end of the line
    };
    Kind kind = Kind::passedOver;
    char key = 0;
    Field field;  // all of it
    Field value;
};

// Moves over one line, never back. The line must outlive it.
class FieldCursor {
  public:
    explicit FieldCursor(std::string_view line) : at(line.data()), end(at + line.size()) {}

    const char* At() const { return at; }
    const char* End() const { return end; }

    bool SkipBlanks() {
        while (at != end && IsBlank(*at)) ++at;
        return at != end;
    }

    // The next field; none at the end of the line.
    Field NextToken() {
        if (!SkipBlanks()) return {};
        const char* const first = at;
        while (at != end && !IsBlank(*at)) ++at;
        return {first, static_cast<size_t>(at - first)};
    }

    // Passes over everything up to a quote character and takes the text up to the next of its kind, or to the
    // end of the line.
    QuotedText NextQuoted() {
        while (at != end && !IsQuote(*at)) ++at;
        QuotedText quoted{{}, at, false};
        if (at == end || ++at == end) return quoted;
        const char* const first = at;
        while (at != end && *at != *quoted.quote) ++at;
        quoted.text = {first, static_cast<size_t>(at - first)};
        quoted.closed = at != end;
        if (quoted.closed) ++at;
        return quoted;
    }

    // The next key field with one of the keys, or what stands in its place. False at the end of the line.
    bool NextKeyField(LetterSet keys, KeyField& found) {
        if (!SkipBlanks()) return false;
        const char* const first = at;
        found = {};
        if (keys.Has(*at)) {
            found.key = *at++;
            const char* const behindKey = at;
            if (!SkipBlanks()) {
                found.kind = KeyField::Kind::noEquals;
            } else if (*at == '=') {
                ++at;
                found.value = NextToken();
                found.kind = IsNone(found.value) ? KeyField::Kind::noValue : KeyField::Kind::value;
            } else {
                found.kind = at == behindKey ? KeyField::Kind::passedOver : KeyField::Kind::noEquals;
                NextToken();
            }
        } else {
            NextToken();
        }
        found.field = {first, static_cast<size_t>(at - first)};
        return true;
    }

  private:
    const char* at;
    const char* end;
};

}  // namespace vemrado::map
