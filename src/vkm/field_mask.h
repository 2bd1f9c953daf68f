// Where fields stand among the next characters of a line, as bits: finding a field's end is a count of bits
// then, not a loop that the processor mispredicts at every field.

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/line_feed.h"
#include "vkm/characters.h"

namespace vemrado {

// Characters that a mask tells of; one less than its bits, so that a field's end is always among them.
constexpr size_t fieldMaskSize = 63;
static_assert(platform::searchSlack > fieldMaskSize);

// Bit i says that text[i] is neither blank nor tab. Looks at 64 characters.
inline uint64_t FieldMask(const char* text) {
    uint64_t blanks = 0;
#if defined(__SSE2__)
    const __m128i blank = _mm_set1_epi8(' ');
    const __m128i tab = _mm_set1_epi8('\t');
    for (int i = 0; i < 64; i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const __m128i found = _mm_or_si128(_mm_cmpeq_epi8(block, blank), _mm_cmpeq_epi8(block, tab));
        blanks |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(found))) << i;
    }
#else
    for (int i = 0; i < 64; ++i) blanks |= static_cast<uint64_t>(Is(text[i], blankCharacter)) << i;
#endif
    return ~blanks;
}

}  // namespace vemrado
