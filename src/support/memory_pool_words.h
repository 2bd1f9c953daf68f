// The words around a pool's blocks, and what the address sanitizer is told of them.

#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__)
#define VEMRADO_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VEMRADO_ADDRESS_SANITIZER 1
#endif
#endif

#if defined(VEMRADO_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#endif

namespace vemrado::pool {

constexpr uint32_t wordSize = 4;
constexpr uint32_t freeBit = 1;
constexpr uint32_t edgeBit = 2;  // of a header: first of its region; of a trailer: last
constexpr uint32_t sizeMask = ~(freeBit | edgeBit);

// User memory holds objects of any type before and after it holds words.
using Word __attribute__((may_alias)) = uint32_t;

#if defined(VEMRADO_ADDRESS_SANITIZER)
// Words are poisoned for everybody else.
__attribute__((no_sanitize_address)) inline uint32_t Load(const char* word) {
    return *reinterpret_cast<const Word*>(word);
}
__attribute__((no_sanitize_address)) inline void Store(char* word, uint32_t value) {
    *reinterpret_cast<Word*>(word) = value;
}
inline void Poison(const char* start, size_t size) {
    __asan_poison_memory_region(start, size);
}
inline void Unpoison(const char* start, size_t size) {
    __asan_unpoison_memory_region(start, size);
}
#else
inline uint32_t Load(const char* word) {
    return *reinterpret_cast<const Word*>(word);
}
inline void Store(char* word, uint32_t value) {
    *reinterpret_cast<Word*>(word) = value;
}
inline void Poison(const char*, size_t) {}
inline void Unpoison(const char*, size_t) {}
#endif

// All blocks are named by the address of their user area.
inline char* HeaderOf(char* block) {
    return block - wordSize;
}
inline char* TrailerOf(char* block, uint32_t size) {
    return block + size;
}
inline char* BlockAfter(char* block, uint32_t size) {
    return block + size + 2 * wordSize;
}

inline void SetBlock(char* block, uint32_t size, uint32_t headerBits, uint32_t trailerBits) {
    Store(HeaderOf(block), size | headerBits);
    Store(TrailerOf(block, size), size | trailerBits);
}

}  // namespace vemrado::pool
