// What each system implements for itself, in posix/ or windows/; everything above it is written once. Beside
// these functions a system implements ErrorReason, CriticalErrorGuard and PumpMessages of platform.h.
//
// Failures are told by the system's own error numbers, which ErrorReason turns into words. Nothing here
// throws.

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/platform.h"

namespace vemrado::platform {

// Error numbers for failures that are not the system's own: of the host's file provider, and of the process
// heap.
extern const int readError;
extern const int seekError;
extern const int memoryError;

// --- Files ---

// An open file of the system; null: none.
using NativeFile = void*;

// Opens for reading from start to end, other readers let in and writers kept out. Null on failure, error is
// set then.
NativeFile NativeOpen(const char* path, int& error);
void NativeClose(NativeFile file);
// One read of the system: bytes read (also fewer than asked), 0 at the end, -1 on failure; error is set then.
int64_t NativeRead(NativeFile file, void* destination, size_t count, int& error);
// The new position from the start, or -1; error is set then.
int64_t NativeSeek(NativeFile file, int64_t offset, Origin origin, int& error);
// Bytes, 0 when the file has no length, or -1; error is set then.
int64_t NativeLength(NativeFile file, int& error);

// --- Registry ---

// As QueryRegistryValue, without the framework's data directory.
bool NativeQueryRegistryValue(RegistryRoot root, const char* subkey, const char* name, uint32_t* type,
                              char* data, uint32_t* size);

// --- Memory ---

// As the functions of platform.h without Native in their names.
void* NativeReserveRegion(size_t size);
void NativeReleaseRegion(void* base, size_t size);
void* NativeReallocateOnHeap(void* block, size_t size);
void NativeFreeOnHeap(void* block);

}  // namespace vemrado::platform
