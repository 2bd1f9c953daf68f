// What the recording drawing library offers to the test beside the three functions of the real one.

#pragma once

#include <cstdint>

extern "C" {
// The registrations since the last call, in order, "line L_4: 1,0,1 2,0,0 @" and a line feed each. Valid
// until the next call.
typedef const char* (*TakeRecordingFunction)();
// What the next registrations return: first, first + step and so on.
typedef void (*SetResultsFunction)(int16_t first, int16_t step);
}
