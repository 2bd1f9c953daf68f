#include "support/numbers.h"

#include <charconv>
#include <limits>

namespace vemrado {

namespace {

constexpr char LowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}
constexpr bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}
constexpr bool IsLetter(char character) {
    return LowerCase(character) >= 'a' && LowerCase(character) <= 'z';
}

// Value of a digit in any base up to 16; 16 for any other character.
constexpr uint32_t DigitValue(char character) {
    if (IsDigit(character)) return static_cast<uint32_t>(character - '0');
    const char lower = LowerCase(character);
    return lower >= 'a' && lower <= 'f' ? static_cast<uint32_t>(lower - 'a') + 10 : 16;
}

bool StartsWithWord(std::string_view text, std::string_view word) {
    if (text.size() < word.size()) return false;
    for (size_t index = 0; index < word.size(); ++index) {
        if (LowerCase(text[index]) != word[index]) return false;
    }
    return true;
}

void SkipWhiteSpace(std::string_view& text) {
    while (!text.empty() && (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r'))) text.remove_prefix(1);
}

// True for a minus sign; a plus sign is passed over too.
bool TakeSign(std::string_view& text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    const bool negative = text[0] == '-';
    text.remove_prefix(1);
    return negative;
}

// Digits of the base, or a full stop and then digits.
bool StartsWithDigits(std::string_view text, uint32_t base) {
    const size_t first = !text.empty() && text[0] == '.' ? 1 : 0;
    return text.size() > first && DigitValue(text[first]) < base;
}

// --- Numbers out of range ---

constexpr int64_t farAway = int64_t{1}
                            << 40;  // more than any count of characters, far less than the type's limit

// The number after an exponent letter, at most farAway either way; 0 when there is none.
int64_t ExponentAt(std::string_view text) {
    const bool negative = TakeSign(text);
    int64_t exponent = 0;
    for (size_t index = 0; index < text.size() && IsDigit(text[index]); ++index) {
        if (exponent < farAway) exponent = exponent * 10 + (text[index] - '0');
    }
    return negative ? -exponent : exponent;
}

// Whether a number that has no double of its own is too large rather than too small. digitWeight is how many
// steps of the exponent a digit makes.
bool IsTooLarge(std::string_view text, uint32_t base, int64_t digitWeight, char exponentLetter) {
    int64_t magnitude =
        0;  // digits from the first that is not 0 up to the full stop, or minus the zeros after it
    bool started = false;
    bool afterStop = false;
    size_t index = 0;
    for (; index < text.size(); ++index) {
        const uint32_t digit = DigitValue(text[index]);
        if (text[index] == '.' && !afterStop) {
            afterStop = true;
        } else if (digit >= base) {
            break;
        } else {
            started = started || digit != 0;
            if (started && !afterStop) ++magnitude;
            if (!started && afterStop) --magnitude;
        }
    }
    const bool hasExponent = index < text.size() && LowerCase(text[index]) == exponentLetter;
    const int64_t exponent = hasExponent ? ExponentAt(text.substr(index + 1)) : 0;
    return magnitude * digitWeight + exponent > 0;
}

double ParseDigits(std::string_view text, std::chars_format format) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, format);
    if (result.ec != std::errc::result_out_of_range) return value;
    const bool tooLarge =
        format == std::chars_format::hex ? IsTooLarge(text, 16, 4, 'p') : IsTooLarge(text, 10, 1, 'e');
    return tooLarge ? std::numeric_limits<double>::infinity() : 0.0;
}

// --- Not a number ---

// The number that the whole of a text makes as strtoull reads it in base 0; 0 when it makes none.
uint64_t PayloadOf(std::string_view text) {
    uint32_t base = 10;
    if (text.size() > 2 && text[0] == '0' && LowerCase(text[1]) == 'x') {
        base = 16;
        text.remove_prefix(2);
    } else if (!text.empty() && text[0] == '0') {
        base = 8;
    }
    constexpr uint64_t limit = std::numeric_limits<uint64_t>::max();
    uint64_t payload = 0;
    bool overflow = false;
    for (const char character : text) {
        const uint32_t digit = DigitValue(character);
        if (digit >= base) return 0;
        overflow = overflow || payload > (limit - digit) / base;
        payload = payload * base + digit;
    }
    return overflow ? limit : payload;
}

// After the word nan: (characters) may give the low bits.
double NotANumber(std::string_view text) {
    constexpr uint64_t quiet = 0x7FF8000000000000u;
    constexpr uint64_t payloadMask = 0x0007FFFFFFFFFFFFu;
    uint64_t payload = 0;
    if (!text.empty() && text[0] == '(') {
        size_t length = 1;
        while (length < text.size() &&
               (IsDigit(text[length]) || IsLetter(text[length]) || text[length] == '_'))
            ++length;
        if (length < text.size() && text[length] == ')') payload = PayloadOf(text.substr(1, length - 1));
    }
    return std::bit_cast<double>(quiet | (payload & payloadMask));
}

// After 0x. Of two signs before an exponent the C++ library takes both, where no number goes on.
double ParseHexadecimal(std::string_view text) {
    return ParseDigits(text.substr(0, text.find("+-")), std::chars_format::hex);
}

// A number without white space and sign before it: digits, inf or nan.
double ParseMagnitude(std::string_view text) {
    if (StartsWithDigits(text, 10)) {
        const bool hex = StartsWithWord(text, "0x") && StartsWithDigits(text.substr(2), 16);
        return hex ? ParseHexadecimal(text.substr(2)) : ParseDigits(text, std::chars_format::general);
    }
    if (StartsWithWord(text, "inf")) return std::numeric_limits<double>::infinity();
    return NotANumber(text.substr(3));
}

bool StartsWithNumber(std::string_view text) {
    return StartsWithDigits(text, 10) || StartsWithWord(text, "inf") || StartsWithWord(text, "nan");
}

}  // namespace

double ParseReal(std::string_view text) {
    SkipWhiteSpace(text);
    const bool negative = TakeSign(text);
    if (!StartsWithNumber(text)) return 0;  // without the sign, which belongs to no number
    const double magnitude = ParseMagnitude(text);
    return negative ? -magnitude : magnitude;
}

int32_t numbers::ParseAnyInteger(std::string_view text) {
    constexpr int64_t largest = std::numeric_limits<int32_t>::max();
    SkipWhiteSpace(text);
    const bool negative = TakeSign(text);
    const int64_t limit = negative ? largest + 1 : largest;
    int64_t value = 0;
    for (size_t index = 0; index < text.size() && IsDigit(text[index]) && value < limit; ++index) {
        value = value * 10 + (text[index] - '0');
    }
    if (value > limit) value = limit;
    return static_cast<int32_t>(negative ? -value : value);
}

}  // namespace vemrado
