#include "faults/counted_memory.h"

namespace vemrado_test {

constinit CountedMemory countedMemory;

}  // namespace vemrado_test

using vemrado_test::countedMemory;

// Called by the library, from its load on.
extern "C" {

__attribute__((visibility("default"))) bool CountedRequestFails() {
    ++countedMemory.requests;
    return countedMemory.failing != 0 &&
           (countedMemory.requests == countedMemory.failing ||
            (countedMemory.andLater && countedMemory.requests > countedMemory.failing));
}

__attribute__((visibility("default"))) void CountedChange(int64_t blocks, int64_t mappedBytes) {
    countedMemory.blocks += blocks;
    countedMemory.mappedBytes += mappedBytes;
}

}  // extern "C"
