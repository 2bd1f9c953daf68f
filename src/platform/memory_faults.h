// Counted failures of the memory functions, for tests.

#pragma once

#include <cstdint>

namespace vemrado::platform {

// ReserveRegion and ReallocateOnHeap give null once this many more calls have been served; below 0 they never
// fail of themselves.
extern int64_t memoryCallsLeft;

}  // namespace vemrado::platform
