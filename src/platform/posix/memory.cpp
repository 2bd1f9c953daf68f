#include <sys/mman.h>

#include <cstdlib>

#include "platform/native.h"

namespace vemrado::platform {

namespace {

char* Map(size_t size) {
    void* piece = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return piece == MAP_FAILED ? nullptr : static_cast<char*>(piece);
}

size_t BytesPastBoundary(const char* address) {
    return reinterpret_cast<uintptr_t>(address) % regionGranularity;
}

}  // namespace

// The system aligns to its page size only. It places pieces side by side, so that after an aligned one the
// next fits as it comes; where it does not, the region is cut out of a larger piece whose ends go back at
// once.
void* NativeReserveRegion(size_t size) {
    char* region = Map(size);
    if (region == nullptr || BytesPastBoundary(region) == 0) return region;
    munmap(region, size);
    const size_t larger = size + regionGranularity;
    char* piece = Map(larger);
    if (piece == nullptr) return nullptr;
    const size_t past = BytesPastBoundary(piece);
    const size_t before = past == 0 ? 0 : regionGranularity - past;
    if (before != 0) munmap(piece, before);
    munmap(piece + before + size, larger - before - size);
    return piece + before;
}

void NativeReleaseRegion(void* base, size_t size) {
    munmap(base, size);
}

void* NativeReallocateOnHeap(void* block, size_t size) {
    return std::realloc(block, size);
}

void NativeFreeOnHeap(void* block) {
    std::free(block);
}

}  // namespace vemrado::platform
