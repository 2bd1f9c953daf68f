#include <cstring>
#include <string_view>

#include "framework/framework.h"
#include "platform/ascii_case.h"
#include "platform/native.h"
#include "platform/platform.h"

namespace vemrado::platform {

namespace {

// The value that a host has set in place of the registry's, or null.
const char* OverridingText(const char* subkey, const char* name) {
    constexpr std::string_view dataKey = "Software\\Zorvat\\Ini\\Velka";
    if (subkey == nullptr || name == nullptr || !SameWithoutCase(subkey, dataKey)) return nullptr;
    if (!SameWithoutCase(name, "LocalPath") && !SameWithoutCase(name, "SharedPath")) return nullptr;
    return FrameworkGetDataDirectory();
}

}  // namespace

bool QueryRegistryValue(RegistryRoot root, const char* subkey, const char* name, uint32_t* type, char* data,
                        uint32_t* size) {
    const char* text = OverridingText(subkey, name);
    if (text == nullptr) return NativeQueryRegistryValue(root, subkey, name, type, data, size);
    const auto needed = static_cast<uint32_t>(std::strlen(text) + 1);
    const bool fits = data == nullptr || *size >= needed;
    if (data != nullptr && fits) std::memcpy(data, text, needed);
    *type = registryString;
    *size = needed;
    return fits;
}

}  // namespace vemrado::platform
