// Number conversions, the same on every system and in every locale.
//
// What fields of a file usually hold stands here, inline: an optional minus sign and up to seven digits on
// either side of a full stop. Such a number is an integer over a power of ten, both exact in a double, so
// that one division rounds it as it has to be. Everything else goes to ParseReal.

#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vemrado {

namespace numbers {

// Characters before a text's start and from it on that are loaded whatever its length.
constexpr size_t loadedBefore = 8;
constexpr size_t loadedCharacters = 16;

#if defined(__SSE2__)

static_assert(std::endian::native == std::endian::little, "the first character stands in the lowest byte");

// Digits on either side of a full stop; one less than a power of two, so that several counts are compared
// with it at once.
constexpr size_t mostPlainDigits = 7;

inline constexpr double powersOfTen[mostPlainDigits + 1] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7};

// By a count, the mask of as many bytes at the end of eight.
inline constexpr uint64_t lastBytes[mostPlainDigits + 1] = {
    0, ~0ull << 56, ~0ull << 48, ~0ull << 40, ~0ull << 32, ~0ull << 24, ~0ull << 16, ~0ull << 8};

// Bit i: text[i] is a full stop.
inline uint32_t FullStops(const char* text) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8('.'))));
}

// Eight bytes from each place.
inline __m128i LoadHalves(const void* low, const void* high) {
    const __m128i first = _mm_loadl_epi64(static_cast<const __m128i*>(low));
    return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(first), static_cast<const __m64*>(high)));
}

// The digits before two places, a count of each, as values from 0 to 9: at the end of their eight bytes with
// zeros before them. What is no digit has a larger value.
inline __m128i LoadDigits(const char* end, size_t count, const char* secondEnd, size_t secondCount) {
    const __m128i characters = LoadHalves(end - 8, secondEnd - 8);
    return _mm_and_si128(_mm_xor_si128(characters, _mm_set1_epi8('0')),
                         LoadHalves(lastBytes + count, lastBytes + secondCount));
}

inline bool AreDigits(__m128i values) {
    return _mm_movemask_epi8(_mm_adds_epu8(values, _mm_set1_epi8(127 - 9))) == 0;
}

// The four numbers that sixteen digits make, four by four.
inline __m128i JoinDigits(__m128i digits) {
    const __m128i first = _mm_and_si128(digits, _mm_set1_epi16(0xFF));  // of each pair
    const __m128i second = _mm_srli_epi16(digits, 8);
    return _mm_add_epi32(_mm_madd_epi16(first, _mm_set1_epi32(1000 + (10 << 16))),
                         _mm_madd_epi16(second, _mm_set1_epi32(100 + (1 << 16))));
}

// The numbers that each two numbers of four digits make: the first's, then the second's.
inline __m128i JoinFours(__m128i first, __m128i second) {
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(10000 + (1 << 16)));
}

// Two numbers at once, each of the form d{0,7}.d{0,7}; else false. loadedBefore characters before both texts
// and loadedCharacters from their starts must be readable.
[[gnu::always_inline]] inline bool ParsePlainPair(std::string_view firstText, std::string_view secondText,
                                                  double& first, double& second) {
    constexpr uint32_t none = 1u << loadedCharacters;
    const auto whole = static_cast<uint32_t>(__builtin_ctz(FullStops(firstText.data()) | none));
    const auto secondWhole = static_cast<uint32_t>(__builtin_ctz(FullStops(secondText.data()) | none));
    // Without a full stop in the text these wrap.
    const size_t places = firstText.size() - whole - 1;
    const size_t secondPlaces = secondText.size() - secondWhole - 1;
    if ((whole | secondWhole | places | secondPlaces) > mostPlainDigits) return false;

    const __m128i wholeDigits =
        LoadDigits(firstText.data() + whole, whole, secondText.data() + secondWhole, secondWhole);
    const __m128i placesDigits = LoadDigits(firstText.data() + firstText.size(), places,
                                            secondText.data() + secondText.size(), secondPlaces);
    if (!AreDigits(_mm_max_epu8(wholeDigits, placesDigits))) return false;

    const __m128i parts = JoinFours(JoinDigits(wholeDigits), JoinDigits(placesDigits));
    const __m128d wholes = _mm_cvtepi32_pd(parts);
    const __m128d fractions = _mm_cvtepi32_pd(_mm_unpackhi_epi64(parts, parts));
    const __m128d scales = _mm_castsi128_pd(LoadHalves(powersOfTen + places, powersOfTen + secondPlaces));
    const __m128d values = _mm_div_pd(_mm_add_pd(_mm_mul_pd(wholes, scales), fractions), scales);
    first = _mm_cvtsd_f64(values);
    second = _mm_cvtsd_f64(_mm_unpackhi_pd(values, values));
    return true;
}

// One number of the form -{0,1}d{0,7}[.d{0,7}] with at least one digit; else false. As many characters must
// be readable as for two, and one more behind.
[[gnu::always_inline]] inline bool ParsePlainReal(const char* text, size_t length, double& value) {
    const bool negative = *text == '-';
    text += negative;
    length -= negative;
    if (length > 2 * mostPlainDigits + 1) return false;
    const auto whole = static_cast<size_t>(__builtin_ctz(FullStops(text) | 1u << length));
    const size_t places = length - whole - (whole < length ? 1 : 0);
    if ((whole | places) > mostPlainDigits || (whole | places) == 0) return false;
    const __m128i digits = LoadDigits(text + whole, whole, text + length, places);
    if (!AreDigits(digits)) return false;
    const __m128i fours = JoinDigits(digits);
    const __m128d parts = _mm_cvtepi32_pd(JoinFours(fours, fours));
    const double scale = powersOfTen[places];
    const double magnitude =
        (_mm_cvtsd_f64(parts) * scale + _mm_cvtsd_f64(_mm_unpackhi_pd(parts, parts))) / scale;
    value = negative ? -magnitude : magnitude;
    return true;
}

#else

inline bool ParsePlainPair(std::string_view, std::string_view, double&, double&) {
    return false;
}
inline bool ParsePlainReal(const char*, size_t, double&) {
    return false;
}

#endif

int32_t ParseAnyInteger(std::string_view text);

}  // namespace numbers

// The number at the start of the text as strtod reads it in the C locale, 0 when there is none. Too large
// gives infinity, too small a denormal number or 0.
double ParseReal(std::string_view text);

// The same for a text that is not empty and stands in a buffer where numbers::loadedBefore characters before
// it and numbers::loadedCharacters + 1 from its start are readable, faster.
inline double ParseBufferedReal(std::string_view text) {
    double value;
    return numbers::ParsePlainReal(text.data(), text.size(), value) ? value : ParseReal(text);
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
