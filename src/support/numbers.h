// Number conversions, the same on every system and in every locale.
//
// What fields of a file usually hold stands here, inline: an optional minus sign and up to seven digits on
// either side of a full stop. Such a number, with its places filled up to eight, is an integer over a power
// of ten, both exact in a double, so that one division rounds it as it has to be. Everything else goes to
// ParseReal.

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

// A number of the form d{0,7}.d{0,7}: where its full stop stands and how many digits stand on either side. In
// what has no full stop the counts are larger than any, having wrapped.
struct PlainNumber {
    const char* fullStop;
    size_t whole;
    size_t places;
};

// The place of the lowest bit, of which there must be one.
inline size_t LowestBit(uint64_t bits) {
    return static_cast<uint32_t>(__builtin_ctzll(bits));
}

#if defined(__SSE2__)

static_assert(std::endian::native == std::endian::little, "the first character stands in the lowest byte");

// Digits on either side of a full stop; one less than a power of two, so that several counts are compared
// with it at once.
constexpr size_t mostPlainDigits = 7;

// By a count, the mask of as many bytes at the end and at the start of eight.
inline constexpr uint64_t lastBytes[mostPlainDigits + 1] = {
    0, ~0ull << 56, ~0ull << 48, ~0ull << 40, ~0ull << 32, ~0ull << 24, ~0ull << 16, ~0ull << 8};
inline constexpr uint64_t firstBytes[mostPlainDigits + 1] = {
    0, ~0ull >> 56, ~0ull >> 48, ~0ull >> 40, ~0ull >> 32, ~0ull >> 24, ~0ull >> 16, ~0ull >> 8};

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

// Two times eight characters as values from 0 to 9 where their mask is set, 0 elsewhere. What is no digit has
// a larger value.
inline __m128i LoadDigits(const char* low, const char* high, const uint64_t* lowMask,
                          const uint64_t* highMask) {
    const __m128i values = _mm_xor_si128(LoadHalves(low, high), _mm_set1_epi8('0'));
    return _mm_and_si128(values, LoadHalves(lowMask, highMask));
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

// What eight places behind a full stop count. Digits before it and these are together less than 2^53.
constexpr double allPlaces = 1e8;

// Two numbers at once; false when they are not plain. loadedBefore characters before both full stops and as
// many behind must be readable.
[[gnu::always_inline]] inline bool ParsePlainPair(const PlainNumber& one, const PlainNumber& other,
                                                  double& first, double& second) {
    if ((one.whole | other.whole | one.places | other.places) > mostPlainDigits) return false;
    const __m128i whole =
        LoadDigits(one.fullStop - 8, other.fullStop - 8, lastBytes + one.whole, lastBytes + other.whole);
    const __m128i places =
        LoadDigits(one.fullStop + 1, other.fullStop + 1, firstBytes + one.places, firstBytes + other.places);
    if (!AreDigits(_mm_max_epu8(whole, places))) return false;

    const __m128i parts = JoinFours(JoinDigits(whole), JoinDigits(places));
    const __m128d scale = _mm_set1_pd(allPlaces);
    const __m128d integers = _mm_add_pd(_mm_mul_pd(_mm_cvtepi32_pd(parts), scale),
                                        _mm_cvtepi32_pd(_mm_unpackhi_epi64(parts, parts)));
    const __m128d values = _mm_div_pd(integers, scale);
    first = _mm_cvtsd_f64(values);
    second = _mm_cvtsd_f64(_mm_unpackhi_pd(values, values));
    return true;
}

// The same of two texts, for each as ParsePlainReal.
[[gnu::always_inline]] inline bool ParsePlainPair(std::string_view firstText, std::string_view secondText,
                                                  double& first, double& second) {
    const auto numberIn = [](std::string_view text) {
        const size_t whole = LowestBit(FullStops(text.data()) | 1u << loadedCharacters);
        return PlainNumber{text.data() + whole, whole, text.size() - whole - 1};
    };
    return ParsePlainPair(numberIn(firstText), numberIn(secondText), first, second);
}

// One number of the form -{0,1}d{0,7}[.d{0,7}] with at least one digit; else false. loadedBefore characters
// before the text and loadedCharacters + 1 from its start must be readable.
[[gnu::always_inline]] inline bool ParsePlainReal(const char* text, size_t length, double& value) {
    const bool negative = *text == '-';
    text += negative;
    length -= negative;
    if (length > 2 * mostPlainDigits + 1) return false;
    const size_t whole = LowestBit(FullStops(text) | 1u << length);
    const size_t places = length - whole - (whole < length ? 1 : 0);
    if ((whole | places) > mostPlainDigits || (whole | places) == 0) return false;
    const char* const fullStop = text + whole;
    const __m128i digits = LoadDigits(fullStop - 8, fullStop + 1, lastBytes + whole, firstBytes + places);
    if (!AreDigits(digits)) return false;
    const __m128i fours = JoinDigits(digits);
    const __m128d parts = _mm_cvtepi32_pd(JoinFours(fours, fours));
    const double integer = _mm_cvtsd_f64(parts) * allPlaces + _mm_cvtsd_f64(_mm_unpackhi_pd(parts, parts));
    value = (negative ? -integer : integer) / allPlaces;
    return true;
}

#else

inline bool ParsePlainPair(const PlainNumber&, const PlainNumber&, double&, double&) {
    return false;
}
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
