// The search for the end of a line.

#pragma once

#include <cstddef>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vemrado::platform {

// Characters behind the end of a searched buffer that may be looked at; they must be initialised.
constexpr size_t searchSlack = 64;

// The first line feed among the first limit characters between from and end, or null. Lines are short, so a
// search in place beats the call of memchr. May look at searchSlack characters behind end.
inline const char* FindLineFeed(const char* from, const char* end, size_t limit) {
    const char* stop = static_cast<size_t>(end - from) > limit ? from + limit : end;
#if defined(__SSE2__)
    const __m128i lineFeed = _mm_set1_epi8('\n');
    for (const char* at = from; at < stop; at += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(block, lineFeed));
        if (mask != 0) {
            const char* found = at + __builtin_ctz(static_cast<unsigned int>(mask));
            return found < stop ? found : nullptr;
        }
    }
    return nullptr;
#else
    if (from == stop) return nullptr;
    return static_cast<const char*>(std::memchr(from, '\n', static_cast<size_t>(stop - from)));
#endif
}

}  // namespace vemrado::platform
