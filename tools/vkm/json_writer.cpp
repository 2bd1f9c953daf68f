#include "json_writer.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace vemrado::tools {
namespace {

char* Put(std::string_view text, char* to) {
    return std::copy_n(text.data(), text.size(), to);
}

// Coordinates are mostly whole millimetres. An integer below 2^53 over 1000 is rounded once, by the division
// as by any reader of the decimal number; when the division gives the value, so does its text. Below 2^52 a
// half can be added too.
constexpr double thousandthsLimit = 4.5e12;

char* FormatThousandths(int64_t thousandths, char* to) {
    if (thousandths < 0) *to++ = '-';
    const uint64_t size = static_cast<uint64_t>(thousandths < 0 ? -thousandths : thousandths);
    to = std::to_chars(to, to + numberRoom - 1, size / 1000).ptr;
    const uint64_t fraction = size % 1000;
    if (fraction == 0) return to;
    *to++ = '.';
    *to++ = static_cast<char>('0' + fraction / 100);
    if (fraction % 100 == 0) return to;
    *to++ = static_cast<char>('0' + fraction / 10 % 10);
    if (fraction % 10 == 0) return to;
    *to++ = static_cast<char>('0' + fraction % 10);
    return to;
}

// What follows the backslash for a character that JSON does not take as it is; 0 when it does.
constexpr char EscapeOf(char letter) {
    switch (letter) {
        case '"':
        case '\\':
            return letter;
        case '\b':
            return 'b';
        case '\t':
            return 't';
        case '\n':
            return 'n';
        case '\f':
            return 'f';
        case '\r':
            return 'r';
        default:
            return static_cast<unsigned char>(letter) < 0x20 ? 'u' : '\0';
    }
}

constexpr std::array<char, 256> escapes = [] {
    std::array<char, 256> table{};
    for (size_t i = 0; i < table.size(); ++i) table[i] = EscapeOf(static_cast<char>(i));
    return table;
}();

char* PutEscaped(char letter, char escape, char* to) {
    constexpr std::string_view digits = "0123456789abcdef";
    *to++ = '\\';
    *to++ = escape;
    if (escape != 'u') return to;
    to = Put("00", to);
    *to++ = digits[static_cast<size_t>(letter) >> 4];
    *to++ = digits[static_cast<size_t>(letter) & 15];
    return to;
}

}  // namespace

char* FormatReal(double value, char* to) {
    if (value >= 0.0 && value < 10.0 && value == static_cast<int>(value) && !std::signbit(value)) {
        *to = static_cast<char>('0' + static_cast<int>(value));  // most values other than coordinates
        return to + 1;
    }
    if (std::abs(value) < thousandthsLimit) {
        const auto thousandths = static_cast<int64_t>(value * 1000.0 + (value < 0.0 ? -0.5 : 0.5));
        if (static_cast<double>(thousandths) / 1000.0 == value && (value != 0.0 || !std::signbit(value))) {
            return FormatThousandths(thousandths, to);
        }
        if (value == 0.0) return Put("-0.0", to);
    }
    if (std::isnan(value)) return Put("\"NaN\"", to);
    if (std::isinf(value)) return Put(value > 0 ? "\"Infinity\"" : "\"-Infinity\"", to);
    return std::to_chars(to, to + numberRoom, value).ptr;
}

void JsonWriter::String(std::string_view utf8) {
    constexpr size_t longestEscape = 6;
    constexpr size_t chunk = StandardOutput::largestRoom / longestEscape - 2;
    Raw("\"");
    while (!utf8.empty()) {
        const std::string_view part = utf8.substr(0, chunk);
        char* to = output.Room(part.size() * longestEscape);
        for (const char letter : part) {
            const char escape = escapes[static_cast<unsigned char>(letter)];
            if (escape == '\0') {
                *to++ = letter;
            } else {
                to = PutEscaped(letter, escape, to);
            }
        }
        output.Use(to);
        utf8.remove_prefix(part.size());
    }
    Raw("\"");
}

}  // namespace vemrado::tools
