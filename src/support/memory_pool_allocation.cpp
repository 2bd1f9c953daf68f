// Aligned allocation on top of the pool, whose blocks lie at multiples of 4.
//
// A stricter alignment is had by asking for more and starting inside the block. The word before such an
// address then says how far inside; its free bit is set and its size is larger than any block's, so that it
// is never the header of an allocated block.

#include "support/memory_pool.h"
#include "support/memory_pool_words.h"

namespace vemrado {

using namespace pool;

namespace {

constexpr uint32_t shiftMark = 0xFFFF0000u | freeBit;
constexpr uint32_t shiftMarkMask = shiftMark | edgeBit;
constexpr uint32_t shiftMask = ~shiftMarkMask;  // the bytes between block and address
constexpr size_t largestAlignment = 0x10000;

static_assert((shiftMark & sizeMask) > CMemoryPool::largestRequest + wordSize);
static_assert(largestAlignment - wordSize <= shiftMask);

void* AllocateShifted(size_t size, size_t alignment) {
    const size_t padded = size + alignment - wordSize;
    if (size == 0 || alignment > largestAlignment || padded < size || padded > CMemoryPool::largestRequest)
        return nullptr;

    char* block = static_cast<char*>(mainPool.Alloc(static_cast<uint32_t>(padded)));
    if (block == nullptr) return nullptr;
    const auto shift = static_cast<uint32_t>((0 - reinterpret_cast<uintptr_t>(block)) & (alignment - 1));
    char* address = block + shift;
    Poison(address + size, padded - size - shift);
    if (shift != 0) {
        Store(HeaderOf(address), shiftMark | shift);
        Poison(HeaderOf(block), shift + wordSize);
    }
    return address;
}

}  // namespace

void* AllocateMemory(size_t size, size_t alignment) {
    if (alignment > wordSize) return AllocateShifted(size, alignment);
    return size <= CMemoryPool::largestRequest ? mainPool.Alloc(static_cast<uint32_t>(size)) : nullptr;
}

void FreeMemory(void* address) {
    if (address == nullptr) return;
    char* block = static_cast<char*>(address);
    const uint32_t word = Load(HeaderOf(block));
    if ((word & shiftMarkMask) == shiftMark) block -= word & shiftMask;
    mainPool.Free(block);
}

}  // namespace vemrado
