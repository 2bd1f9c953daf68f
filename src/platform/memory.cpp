#include "platform/memory_faults.h"
#include "platform/native.h"
#include "platform/platform.h"

namespace vemrado::platform {

int64_t memoryCallsLeft = -1;

namespace {

bool CountCall() {
    if (memoryCallsLeft == 0) return false;
    if (memoryCallsLeft > 0) --memoryCallsLeft;
    return true;
}

}  // namespace

void* ReserveRegion(size_t size) {
    return CountCall() ? NativeReserveRegion(size) : nullptr;
}

void ReleaseRegion(void* base, size_t size) {
    NativeReleaseRegion(base, size);
}

void* ReallocateOnHeap(void* block, size_t size) {
    return CountCall() ? NativeReallocateOnHeap(block, size) : nullptr;
}

void FreeOnHeap(void* block) {
    NativeFreeOnHeap(block);
}

}  // namespace vemrado::platform
