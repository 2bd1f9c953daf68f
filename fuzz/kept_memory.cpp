// Keeps the pool's regions and the large buffers of text files for the next run, in place of the system's
// calls, which would take most of a run's time. Linked around the platform layer of the fuzzing program only;
// what a kept piece held before stays in it.

#include <cstdlib>
#include <map>

namespace {

constexpr size_t largeBuffer = 65536;
constexpr size_t mostKept = 32;  // pieces of each size
constexpr size_t largestKept = 4 << 20;

// Free pieces by size.
using Pieces = std::multimap<size_t, void*>;

void* Take(Pieces& pieces, size_t size) {
    const auto found = pieces.find(size);
    if (found == pieces.end()) return nullptr;
    void* piece = found->second;
    pieces.erase(found);
    return piece;
}

Pieces& FreeRegions() {
    static auto& pieces = *new Pieces;
    return pieces;
}

Pieces& FreeBuffers() {
    static auto& pieces = *new Pieces;
    return pieces;
}

std::map<void*, size_t>& LargeBuffers() {
    static auto& sizes = *new std::map<void*, size_t>;
    return sizes;
}

}  // namespace

// The linker puts __wrap_ in front of the functions that it is told to wrap, and __real_ in front of the
// originals. These are NativeReserveRegion(size_t), NativeReleaseRegion(void*, size_t),
// NativeReallocateOnHeap(void*, size_t) and NativeFreeOnHeap(void*) of vemrado::platform.
extern "C" {

void* __real__ZN7vemrado8platform19NativeReserveRegionEm(size_t size);
void __real__ZN7vemrado8platform19NativeReleaseRegionEPvm(void* base, size_t size);
void* __real__ZN7vemrado8platform22NativeReallocateOnHeapEPvm(void* block, size_t size);
void __real__ZN7vemrado8platform16NativeFreeOnHeapEPv(void* block);

void* __wrap__ZN7vemrado8platform19NativeReserveRegionEm(size_t size) {
    void* region = Take(FreeRegions(), size);
    return region != nullptr ? region : __real__ZN7vemrado8platform19NativeReserveRegionEm(size);
}

void __wrap__ZN7vemrado8platform19NativeReleaseRegionEPvm(void* base, size_t size) {
    if (size <= largestKept && FreeRegions().count(size) < mostKept) {
        FreeRegions().emplace(size, base);
    } else {
        __real__ZN7vemrado8platform19NativeReleaseRegionEPvm(base, size);
    }
}

void* __wrap__ZN7vemrado8platform22NativeReallocateOnHeapEPvm(void* block, size_t size) {
    if (block != nullptr || size < largeBuffer) {
        return __real__ZN7vemrado8platform22NativeReallocateOnHeapEPvm(block, size);
    }
    void* buffer = Take(FreeBuffers(), size);
    if (buffer == nullptr) buffer = __real__ZN7vemrado8platform22NativeReallocateOnHeapEPvm(nullptr, size);
    if (buffer != nullptr) LargeBuffers()[buffer] = size;
    return buffer;
}

void __wrap__ZN7vemrado8platform16NativeFreeOnHeapEPv(void* block) {
    const auto large = LargeBuffers().find(block);
    if (large == LargeBuffers().end()) return __real__ZN7vemrado8platform16NativeFreeOnHeapEPv(block);
    const size_t size = large->second;
    LargeBuffers().erase(large);
    if (size <= largestKept && FreeBuffers().count(size) < mostKept) {
        FreeBuffers().emplace(size, block);
    } else {
        __real__ZN7vemrado8platform16NativeFreeOnHeapEPv(block);
    }
}

}  // extern "C"
