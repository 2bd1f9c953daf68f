// The standard .reg text format ("Windows Registry Editor Version 5.00"), which stands in for the registry
// where there is none.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vemrado::platform {

constexpr size_t largestRegFile = 16 * 1024 * 1024;

// QueryRegistryValue on the bytes of a .reg file, UTF-8 or UTF-16 with byte order mark, under
// [HKEY_LOCAL_MACHINE]. Strings come out as UTF-8, those stored as hex too. Later entries replace earlier
// ones; the deletion forms [-key] and "name"=- take back what stood before them. A line that does not parse
// is passed over. False too for a file that is too large or has another first line.
bool QueryRegFile(std::string_view bytes, const char* subkey, const char* name, uint32_t* type, char* data,
                  uint32_t* size);

}  // namespace vemrado::platform
