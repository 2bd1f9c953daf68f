#include "platform/reg_file.h"

#include <algorithm>
#include <cstring>

#include "platform/ascii_case.h"
#include "platform/platform.h"
#include "platform/unicode.h"

namespace vemrado::platform {

namespace {

constexpr std::string_view firstLine = "Windows Registry Editor Version 5.00";
constexpr std::string_view rootKey = "HKEY_LOCAL_MACHINE";

enum RegistryType : uint32_t { regSz = 1, regExpandSz = 2, regBinary = 3, regDword = 4, regMultiSz = 7 };

constexpr bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}
constexpr bool IsLineEnd(char character) {
    return character == '\n' || character == '\r';
}

// Value of a hexadecimal digit, -1 for any other character.
constexpr int HexDigit(char character) {
    const char lower = LowerCase(character);
    if (lower >= '0' && lower <= '9') return lower - '0';
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// The text not yet read. Every operation consumes what it is named for and nothing when that is not there.
class Cursor {
  public:
    explicit Cursor(std::string_view text) : rest(text) {}

    bool AtEnd() const { return rest.empty(); }
    // At the end of the line, before its line end; a comment belongs to that.
    bool AtLineEnd() const { return rest.empty() || IsLineEnd(rest.front()) || rest.front() == ';'; }
    const char* Position() const { return rest.data(); }

    void SkipBlanks() {
        while (!rest.empty() && IsBlank(rest.front())) rest.remove_prefix(1);
    }

    // The rest of the line, without its line end.
    std::string_view TakeLine() {
        const size_t length = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view line = rest.substr(0, length);
        rest.remove_prefix(std::min(length + 1, rest.size()));
        return line;
    }

    bool Take(char character) {
        if (rest.empty() || rest.front() != character) return false;
        rest.remove_prefix(1);
        return true;
    }

    bool TakeWord(std::string_view word) {
        if (!SameWithoutCase(rest.substr(0, word.size()), word)) return false;
        rest.remove_prefix(word.size());
        return true;
    }

    // Up to 8 digits; false when there is none.
    bool TakeHexNumber(uint32_t& number) {
        number = 0;
        size_t digits = 0;
        for (; digits < std::min<size_t>(8, rest.size()) && HexDigit(rest[digits]) >= 0; ++digits) {
            number = number * 16 + static_cast<uint32_t>(HexDigit(rest[digits]));
        }
        rest.remove_prefix(digits);
        return digits != 0;
    }

    // A quoted text of this line, with its escapes still in it.
    bool TakeQuoted(std::string_view& body) {
        if (rest.empty() || rest.front() != '"') return false;
        for (size_t at = 1; at < rest.size() && !IsLineEnd(rest[at]); ++at) {
            if (rest[at] == '"') {
                body = rest.substr(1, at - 1);
                rest.remove_prefix(at + 1);
                return true;
            }
            if (rest[at] == '\\') ++at;
        }
        return false;
    }

    // A backslash that continues the line on the next one.
    bool TakeContinuation() {
        Cursor ahead = *this;
        if (!ahead.Take('\\')) return false;
        ahead.SkipBlanks();
        const bool carriageReturn = ahead.Take('\r');
        if (!ahead.Take('\n') && !carriageReturn) return false;
        *this = ahead;
        return true;
    }

  private:
    std::string_view rest;
};

// The next character of a quoted text; advances at.
char TakeUnescaped(std::string_view body, size_t& at) {
    if (body[at] == '\\') ++at;  // a body does not end with the first half of an escape
    return body[at++];
}

bool QuotedIs(std::string_view body, std::string_view text) {
    size_t matched = 0;
    for (size_t at = 0; at < body.size(); ++matched) {
        if (matched == text.size() || LowerCase(TakeUnescaped(body, at)) != LowerCase(text[matched]))
            return false;
    }
    return matched == text.size();
}

// What a value is given as, still in the words of the file. Empty while no value was found.
struct Value {
    enum class Form { none, quoted, number, bytes } form = Form::none;
    uint32_t type = 0;
    std::string_view body;  // of a quoted text, or of the list of bytes
    uint32_t number = 0;
};

// The next byte of a list that may run over several lines; false at its end.
bool TakeByte(Cursor& cursor, uint8_t& byte) {
    cursor.SkipBlanks();
    while (cursor.TakeContinuation() || cursor.Take(',')) cursor.SkipBlanks();
    Cursor ahead = cursor;
    uint32_t number = 0;
    if (!ahead.TakeHexNumber(number) || number > 0xFF) return false;
    byte = static_cast<uint8_t>(number);
    cursor = ahead;
    return true;
}

// hex:aa,bb or hex(7):aa,bb after the word.
bool TakeBytes(Cursor& cursor, Value& value) {
    value.form = Value::Form::bytes;
    value.type = regBinary;
    if (cursor.Take('(') && !(cursor.TakeHexNumber(value.type) && cursor.Take(')'))) return false;
    if (!cursor.Take(':')) return false;
    const char* start = cursor.Position();
    for (uint8_t byte = 0; TakeByte(cursor, byte);) {
    }
    value.body = {start, static_cast<size_t>(cursor.Position() - start)};
    return true;
}

// The data after the equals sign; a deletion gives a value of no form. False when it does not parse.
bool TakeData(Cursor& cursor, Value& value) {
    value = {};
    bool taken = false;
    if (cursor.TakeQuoted(value.body)) {
        value.form = Value::Form::quoted;
        value.type = regSz;
        taken = true;
    } else if (cursor.TakeWord("dword:")) {
        value.form = Value::Form::number;
        value.type = regDword;
        taken = cursor.TakeHexNumber(value.number);
    } else if (cursor.TakeWord("hex")) {
        taken = TakeBytes(cursor, value);
    } else {
        taken = cursor.Take('-');
    }
    cursor.SkipBlanks();
    return taken && cursor.AtLineEnd();
}

// Reads "name"=data. True when the name is the wanted one and the data parses.
bool TakeEntry(Cursor& cursor, std::string_view wanted, Value& value) {
    std::string_view name;
    const bool isDefault = cursor.Take('@');
    if (!isDefault && !cursor.TakeQuoted(name)) return false;
    cursor.SkipBlanks();
    if (!cursor.Take('=')) return false;
    cursor.SkipBlanks();
    return TakeData(cursor, value) && QuotedIs(name, wanted);
}

// The path below the root of a key line's content such as HKEY_LOCAL_MACHINE\Software; false for another
// root.
bool PathBelowRoot(std::string_view key, std::string_view& path) {
    if (!SameWithoutCase(key.substr(0, rootKey.size()), rootKey)) return false;
    path = key.substr(rootKey.size());
    if (!path.empty() && path.front() != '\\') return false;
    if (!path.empty()) path.remove_prefix(1);
    return true;
}

bool IsAtOrBelow(std::string_view path, std::string_view ancestor) {
    if (ancestor.empty()) return true;
    if (!SameWithoutCase(path.substr(0, ancestor.size()), ancestor)) return false;
    return path.size() == ancestor.size() || path[ancestor.size()] == '\\';
}

// Walks over the lines and keeps the last value of one name under one key.
class Search {
  public:
    Search(std::string_view wantedKey, std::string_view wantedName) : key(wantedKey), name(wantedName) {}

    Value Run(std::string_view text) {
        Cursor cursor(text);
        cursor.SkipBlanks();
        std::string_view title = cursor.TakeLine();
        while (!title.empty() && IsBlank(title.back())) title.remove_suffix(1);
        if (title != firstLine) return {};
        while (!cursor.AtEnd()) {
            cursor.SkipBlanks();
            if (cursor.Take('[')) {
                EnterKey(cursor.TakeLine());
                continue;
            }
            Value value;
            if (inKey && TakeEntry(cursor, name, value)) found = value;
            cursor.TakeLine();
        }
        return found;
    }

  private:
    void EnterKey(std::string_view line) {
        inKey = false;
        const size_t bracket = line.rfind(']');
        if (bracket == line.npos) return;
        std::string_view content = line.substr(0, bracket);
        const bool deletion = !content.empty() && content.front() == '-';
        if (deletion) content.remove_prefix(1);
        std::string_view path;
        if (!PathBelowRoot(content, path)) return;
        if (deletion && IsAtOrBelow(key, path)) found = {};
        inKey = !deletion && SameWithoutCase(path, key);
    }

    std::string_view key;
    std::string_view name;
    bool inKey = false;
    Value found;
};

// Takes bytes up to its room and counts all of them.
class Output {
  public:
    Output(char* target, uint32_t targetRoom) : data(target), room(target != nullptr ? targetRoom : 0) {}

    void Put(char byte) {
        if (count < room) data[count] = byte;
        ++count;
    }
    void PutCharacter(char32_t character) {
        char bytes[4];
        const size_t length = EncodeUtf8(character, bytes);
        std::for_each(bytes, bytes + length, [this](char byte) { Put(byte); });
    }
    uint32_t Count() const { return count; }

  private:
    char* data;
    uint32_t room;
    uint32_t count = 0;
};

// Strings given as bytes are UTF-16.
void PutUtf16Bytes(std::string_view body, Output& output) {
    Cursor cursor(body);
    Utf16Decoder decoder;
    for (uint8_t low = 0, high = 0; TakeByte(cursor, low) && TakeByte(cursor, high);) {
        decoder.Take(static_cast<char16_t>(low | (high << 8)),
                     [&](char32_t character) { output.PutCharacter(character); });
    }
    decoder.Finish([&](char32_t character) { output.PutCharacter(character); });
}

void PutValue(const Value& value, Output& output) {
    if (value.form == Value::Form::quoted) {
        for (size_t at = 0; at < value.body.size();) output.Put(TakeUnescaped(value.body, at));
        output.Put('\0');
    } else if (value.form == Value::Form::number) {
        for (int shift = 0; shift < 32; shift += 8)
            output.Put(static_cast<char>((value.number >> shift) & 0xFF));
    } else if (value.type == regSz || value.type == regExpandSz || value.type == regMultiSz) {
        PutUtf16Bytes(value.body, output);
    } else {
        Cursor cursor(value.body);
        for (uint8_t byte = 0; TakeByte(cursor, byte);) output.Put(static_cast<char>(byte));
    }
}

bool QueryUtf8(std::string_view text, const char* subkey, const char* name, uint32_t* type, char* data,
               uint32_t* size) {
    Search search(subkey != nullptr ? subkey : "", name != nullptr ? name : "");
    const Value value = search.Run(text);
    if (value.form == Value::Form::none) return false;
    const uint32_t room = *size;
    Output output(data, room);
    PutValue(value, output);
    *type = value.type;
    *size = output.Count();
    return data == nullptr || output.Count() <= room;
}

}  // namespace

bool QueryRegFile(std::string_view bytes, const char* subkey, const char* name, uint32_t* type, char* data,
                  uint32_t* size) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    constexpr std::string_view utf16Mark = "\xFF\xFE";
    if (bytes.size() > largestRegFile) return false;
    if (bytes.substr(0, utf16Mark.size()) != utf16Mark) {
        if (bytes.substr(0, utf8Mark.size()) == utf8Mark) bytes.remove_prefix(utf8Mark.size());
        return QueryUtf8(bytes, subkey, name, type, data, size);
    }
    bytes.remove_prefix(utf16Mark.size());
    char* text = static_cast<char*>(ReallocateOnHeap(nullptr, LargestUtf8Size(bytes.size()) + 1));
    if (text == nullptr) return false;
    const size_t length = Utf16ToUtf8(bytes, text);
    const bool found = QueryUtf8({text, length}, subkey, name, type, data, size);
    FreeOnHeap(text);
    return found;
}

}  // namespace vemrado::platform
