// Files of the host's file provider, with the functions of native.h. The provider reads forward only: to go
// back, the file is opened again and the bytes before the place are passed over.

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/platform.h"

namespace vemrado::platform {

struct ProvidedFile;

// Null with error 0 when no provider is set or it has no such file; null with an error when there is no
// memory.
ProvidedFile* ProvidedOpen(const char* path, int& error);
void ProvidedClose(ProvidedFile* file);
int64_t ProvidedRead(ProvidedFile* file, void* destination, size_t count, int& error);
int64_t ProvidedSeek(ProvidedFile* file, int64_t offset, Origin origin, int& error);
int64_t ProvidedLength(ProvidedFile* file, int& error);

}  // namespace vemrado::platform
