#include <sys/mman.h>

#include <cstdlib>

#include "platform/native.h"

namespace vemrado::platform {

// The system aligns to its page size only, so a region is cut out of a larger piece whose ends go back at
// once.
void* NativeReserveRegion(size_t size) {
    const size_t whole = size + regionGranularity;
    if (size == 0 || whole < size) return nullptr;
    void* piece = mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (piece == MAP_FAILED) return nullptr;
    char* start = static_cast<char*>(piece);
    const size_t past = reinterpret_cast<uintptr_t>(start) % regionGranularity;
    const size_t before = past == 0 ? 0 : regionGranularity - past;
    if (before != 0) munmap(start, before);
    munmap(start + before + size, whole - before - size);
    return start + before;
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
