#include <windows.h>

#include "platform/native.h"

namespace vemrado::platform {

const int memoryError = ERROR_NOT_ENOUGH_MEMORY;

void* NativeReserveRegion(size_t size) {
    return VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void NativeReleaseRegion(void* base, size_t size) {
    VirtualFree(base, size, MEM_DECOMMIT);
    VirtualFree(base, 0, MEM_RELEASE);
}

void* NativeReallocateOnHeap(void* block, size_t size) {
    const HANDLE heap = GetProcessHeap();
    return block == nullptr ? HeapAlloc(heap, 0, size) : HeapReAlloc(heap, 0, block, size);
}

void NativeFreeOnHeap(void* block) {
    if (block != nullptr) HeapFree(GetProcessHeap(), 0, block);
}

}  // namespace vemrado::platform
