// Where fields and line feeds stand among the next characters of a file, as bits: finding a field's end is a
// count of bits then, not a loop that the processor mispredicts at every field.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "platform/line_feed.h"
#include "vkm/characters.h"

namespace vemrado {

// Characters that a scan tells of; one less than its bits, so that a field's end is always among them.
constexpr size_t scannedCharacters = 63;
static_assert(platform::searchSlack > scannedCharacters);

struct LineScan {
    uint64_t fields;     // bit i: text[i] is neither blank nor tab
    uint64_t lineFeeds;  // bit i: text[i] is a line feed
};

// Looks at 64 characters.
inline LineScan ScanLine(const char* text) {
    uint64_t blankBits = 0;
    uint64_t lineFeeds = 0;
#if defined(__SSE2__)
    const __m128i blank = _mm_set1_epi8(' ');
    const __m128i tab = _mm_set1_epi8('\t');
    const __m128i lineFeed = _mm_set1_epi8('\n');
    const auto bits = [](__m128i found, int at) {
        return static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(found))) << at;
    };
    for (int i = 0; i < 64; i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        blankBits |= bits(_mm_or_si128(_mm_cmpeq_epi8(block, blank), _mm_cmpeq_epi8(block, tab)), i);
        lineFeeds |= bits(_mm_cmpeq_epi8(block, lineFeed), i);
    }
#else
    for (int i = 0; i < 64; ++i) {
        blankBits |= static_cast<uint64_t>(Is(text[i], blankCharacter)) << i;
        lineFeeds |= static_cast<uint64_t>(text[i] == '\n') << i;
    }
#endif
    return {~blankBits, lineFeeds};
}

// Bit i: text[i] is a blank or a control character. Looks at 64 characters.
inline uint64_t BlanksAndControls(const char* text) {
    uint64_t found = 0;
#if defined(__SSE2__)
    const __m128i blank = _mm_set1_epi8(' ');
    for (int i = 0; i < 64; i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const int bits = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(block, blank), block));
        found |= static_cast<uint64_t>(static_cast<uint32_t>(bits)) << i;
    }
#else
    for (int i = 0; i < 64; ++i) {
        found |= static_cast<uint64_t>(static_cast<unsigned char>(text[i]) <= ' ') << i;
    }
#endif
    return found;
}

// Bit i: text[i] is the character. Looks at count characters, up to 64.
template <int count = 64>
inline uint64_t PlacesOf(char wanted, const char* text) {
    uint64_t found = 0;
#if defined(__SSE2__)
    const __m128i pattern = _mm_set1_epi8(wanted);
    for (int i = 0; i < count; i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const int bits = _mm_movemask_epi8(_mm_cmpeq_epi8(block, pattern));
        found |= static_cast<uint64_t>(static_cast<uint32_t>(bits)) << i;
    }
#else
    for (int i = 0; i < count; ++i) found |= static_cast<uint64_t>(text[i] == wanted) << i;
#endif
    return found;
}

// The first such character between from and end, or end. Looks at up to 16 characters behind end.
inline const char* FindCharacter(char wanted, const char* from, const char* end) {
#if defined(__SSE2__)
    const __m128i pattern = _mm_set1_epi8(wanted);
    for (const char* at = from; at < end; at += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(block, pattern));
        if (mask == 0) continue;
        const char* found = at + __builtin_ctz(static_cast<unsigned int>(mask));
        return found < end ? found : end;
    }
    return end;
#else
    return std::find(from, end, wanted);
#endif
}

// The lowest count bits.
constexpr uint64_t LowBits(size_t count) {
    return (uint64_t{1} << count) - 1;
}

}  // namespace vemrado
