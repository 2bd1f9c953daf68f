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

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vemrado {

namespace numbers {

static_assert(std::endian::native == std::endian::little, "the first character stands in the lowest byte");

// Eight characters at once, the first in the lowest byte, as the digits' values 0 to 9.
inline uint64_t LoadEightDigits(const char* text) {
    uint64_t characters;
    std::memcpy(&characters, text, sizeof characters);
    return characters ^ 0x3030303030303030u;
}

// Keeps the first count of eight digits and puts zeros before them.
inline uint64_t KeepDigits(uint64_t values, size_t count) {
    const size_t half = 4 * (8 - count);
    return values << half << half;
}

// The number that eight digits' values make.
inline uint64_t JoinEightDigits(uint64_t values) {
    values = values * 10 + (values >> 8);  // pairs, in every other byte
    constexpr uint64_t pairMask = 0x000000FF000000FFu;
    return ((values & pairMask) * (100 + (uint64_t{1000000} << 32)) +
            ((values >> 16) & pairMask) * (1 + (uint64_t{10000} << 32))) >>
           32;
}

inline constexpr double powersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
inline constexpr uint64_t integerPowersOfTen[] = {1,      10,      100,      1000,     10000,
                                                  100000, 1000000, 10000000, 100000000};
constexpr uint64_t largestExactInteger = uint64_t{1} << 53;

// Characters from a text's start that are loaded whatever its length.
constexpr size_t loadedCharacters = 32;

// Reads [-]d{0,8}[.d{0,8}] with at least one digit when the whole text is of that form and its digits make an
// exact integer; else false. loadedCharacters must be readable at text.
inline bool ParsePlainReal(const char* text, size_t length, double& value) {
#if defined(__SSE2__)
    const bool negative = *text == '-';
    text += negative;
    length -= negative;
    if (length - 1 >= 16) return false;

    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const __m128i values = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    const __m128i areDigits = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
    const uint32_t behind = uint32_t{1} << length;
    const uint32_t others = ~static_cast<uint32_t>(_mm_movemask_epi8(areDigits)) & (behind - 1);
    const auto whole = static_cast<size_t>(__builtin_ctz(others | behind));
    size_t places = 0;
    if (others != 0) {
        places = length - whole - 1;
        if (text[whole] != '.' || (others & (others - 1)) != 0 || length == 1) return false;
    }
    if (whole > 8 || places > 8) return false;
    const uint64_t mantissa =
        JoinEightDigits(KeepDigits(LoadEightDigits(text), whole)) * integerPowersOfTen[places] +
        JoinEightDigits(KeepDigits(LoadEightDigits(text + whole + 1), places));
    if (mantissa > largestExactInteger) return false;
    const double magnitude = static_cast<double>(static_cast<int64_t>(mantissa)) / powersOfTen[places];
    value = negative ? -magnitude : magnitude;
    return true;
#else
    static_cast<void>(text), static_cast<void>(length), static_cast<void>(value);
    return false;
#endif
}

double ParseAnyReal(std::string_view text);
int32_t ParseAnyInteger(std::string_view text);

}  // namespace numbers

// The number at the start of the text as strtod reads it in the C locale, 0 when there is none. Too large
// gives infinity, too small a denormal number or 0.
inline double ParseReal(std::string_view text) {
    char padded[numbers::loadedCharacters] = {};
    double value;
    if (!text.empty() && text.size() <= numbers::loadedCharacters) {
        std::memcpy(padded, text.data(), text.size());
        if (numbers::ParsePlainReal(padded, text.size(), value)) return value;
    }
    return numbers::ParseAnyReal(text);
}

// The same for a text that is not empty and stands in a buffer where numbers::loadedCharacters are readable
// from its start, faster.
inline double ParseBufferedReal(std::string_view text) {
    double value;
    return numbers::ParsePlainReal(text.data(), text.size(), value) ? value : numbers::ParseAnyReal(text);
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
