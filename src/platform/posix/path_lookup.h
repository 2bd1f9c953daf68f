// Finds files under names that were written for a system with '\' as separator and without case.

#pragma once

#include <cstddef>

namespace vemrado::platform {

// Both write a path that may lie anywhere in found and return true, or return false when there is none or it
// does not fit. Bytes are compared; only the letters A to Z are the same as a to z.

// The path with '/' in place of '\'; false when it has no '\'.
bool ConvertSeparators(const char* path, char* found, size_t capacity);
// The path on disk that differs from the given one, whose separators are '/', in case only. Each component is
// taken as written where it exists, else as the first of the names that fit, in byte order.
bool FindWithoutCase(const char* path, char* found, size_t capacity);

}  // namespace vemrado::platform
