// Number conversions, the same on every system and in every locale.
//
// What fields of a file usually hold stands here, inline: an optional minus sign and up to eight digits on
// either side of a full stop. Such a number is an integer over a power of ten, both exact in a double, so
// that one division rounds it as it has to be. Everything else goes to ParseAnyReal.

#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vemrado {

namespace numbers {

static_assert(std::endian::native == std::endian::little, "the first character stands in the lowest byte");

// Eight characters at once, the first in the lowest byte. Digits have the values 0 to 9 once the zeros are
// taken off.
constexpr uint64_t eightZeros = 0x3030303030303030u;
constexpr uint64_t topBits = 0x8080808080808080u;

template <class Unsigned>
inline Unsigned LoadCharacters(const char* text) {
    Unsigned characters;
    std::memcpy(&characters, text, sizeof characters);
    return characters;
}

// The 1 to 8 characters of a text in the low bytes of a word. Reads nothing outside of it.
inline uint64_t LoadShort(const char* text, size_t length) {
    if (length == 8) return LoadCharacters<uint64_t>(text);
    if (length >= 4) {
        const uint64_t tail = LoadCharacters<uint32_t>(text + length - 4);
        return LoadCharacters<uint32_t>(text) | tail << (8 * (length - 4));
    }
    const auto at = [&](size_t index) { return static_cast<uint64_t>(static_cast<uint8_t>(text[index])); };
    return at(0) | at(length / 2) << (8 * (length / 2)) | at(length - 1) << (8 * (length - 1));
}

// A bit for each byte that is no digit's value, exact up to and including the lowest such byte.
inline uint64_t MarkNonDigits(uint64_t values) {
    return ((values + 0x7676767676767676u) | values) & topBits;
}

// The number that eight digits' values make; leading zero bytes count as zeros.
inline uint64_t JoinEightDigits(uint64_t values) {
    values = values * 10 + (values >> 8);  // pairs, in every other byte
    constexpr uint64_t pairMask = 0x000000FF000000FFu;
    return ((values & pairMask) * (100 + (uint64_t{1000000} << 32)) +
            ((values >> 16) & pairMask) * (1 + (uint64_t{10000} << 32))) >>
           32;
}

inline constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr uint64_t integerPowersOfTen[] = {1,      10,      100,      1000,     10000,
                                                  100000, 1000000, 10000000, 100000000};
constexpr uint64_t largestExactInteger = uint64_t{1} << 53;

// Reads [-]d{1,8}[.d{0,8}] when the whole text is of that form and the digits make an exact integer; else
// false.
inline bool ParsePlainReal(std::string_view text, double& value) {
    const char* begin = text.data();
    const char* const end = begin + text.size();
    if (begin == end) return false;
    const bool negative = *begin == '-';
    begin += negative;
    const auto size = static_cast<size_t>(end - begin);
    if (size == 0 || size > 17) return false;

    const size_t headSize = size < 8 ? size : 8;
    const uint64_t head = LoadShort(begin, headSize) ^ eightZeros;
    // Behind a text shorter than eight characters stand zero bytes, which are no digits.
    const uint64_t nonDigits = MarkNonDigits(head);
    const size_t whole = nonDigits == 0 ? 8 : static_cast<size_t>(std::countr_zero(nonDigits)) / 8;
    if (whole == 0) return false;
    uint64_t mantissa = JoinEightDigits(head << (8 * (8 - whole)));
    size_t places = 0;
    if (whole < size) {
        places = size - whole - 1;
        if (begin[whole] != '.' || places > 8) return false;
        if (places != 0) {
            // The characters before the fraction are shifted out.
            const uint64_t tail =
                size < 8 ? head << (8 * (8 - size)) : LoadCharacters<uint64_t>(end - 8) ^ eightZeros;
            const size_t before = 8 * (8 - places);
            const uint64_t fraction = tail >> before << before;
            if (MarkNonDigits(fraction) != 0) return false;
            mantissa = mantissa * integerPowersOfTen[places] + JoinEightDigits(fraction);
            if (mantissa > largestExactInteger) return false;
        }
    }
    const double magnitude = static_cast<double>(static_cast<int64_t>(mantissa)) / powersOfTen[places];
    value = negative ? -magnitude : magnitude;
    return true;
}

double ParseAnyReal(std::string_view text);
int32_t ParseAnyInteger(std::string_view text);

}  // namespace numbers

// The number at the start of the text as strtod reads it in the C locale, 0 when there is none. Too large
// gives infinity, too small a denormal number or 0.
inline double ParseReal(std::string_view text) {
    double value;
    return numbers::ParsePlainReal(text, value) ? value : numbers::ParseAnyReal(text);
}

// The number at the start of the text as strtol reads it in base 10 (atoi of the table files too), 0 when
// there is none. A value past the 32-bit limits becomes the limit.
inline int32_t ParseInteger(std::string_view text) {
    constexpr size_t alwaysFits = 9;
    if (text.size() > alwaysFits) return numbers::ParseAnyInteger(text);
    int32_t value = 0;
    for (const char character : text) {
        if (character < '0' || character > '9') return numbers::ParseAnyInteger(text);
        value = value * 10 + (character - '0');
    }
    return value;
}

}  // namespace vemrado
