// The host's data directories, as the host records them in the registry. Nothing is cached: a change in the
// registry shows at the next call. Paths are in the system's code page with '\' as separator. No operation
// fails; each may throw std::bad_alloc.

#pragma once

#include "platform/platform.h"
#include "support/containers.h"

namespace vemrado {

// The text of a registry value, up to its first zero character. defaultText when the key or value is missing
// or the value is not a plain string.
String ReadRegistryString(platform::RegistryRoot root, const char* subkey, const char* name,
                          const char* defaultText);

// The value under the host's Ini key, or where the system keeps the settings of 32-bit programs when that is
// empty.
String ReadIniPath(const char* subkey, const char* name);

// relative behind base with a '\' between; relative alone when it has a drive or names a network share; base
// alone when relative is null or empty.
String MakeFullPath(const char* relative, const String& base);

// The directory, or relative (may be null) in it. Empty when the registry names none.
String GetSharedPath(const char* relative = nullptr);
// The same of the local directory; the shared one stands in for it.
String GetLocalPath(const char* relative = nullptr);

// Where the symbology tables lie: in the data directory that is given, else in the local one. Ends in '\':
// file names are appended to it directly.
String GetSymbolDirectory(const String& dataDirectory = String());

}  // namespace vemrado
