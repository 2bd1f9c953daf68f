// The registry is a text file in the .reg format.

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/native.h"
#include "platform/reg_file.h"

namespace vemrado::platform {

namespace {

constexpr int candidateCount = 3;

// The variable's text; null when it is not set or empty.
const char* Environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] != '\0' ? value : nullptr;
}

// Where the file may be, in the order of preference. Empty when the environment does not name this one.
void CandidatePath(int candidate, char* path, size_t capacity) {
    path[0] = '\0';
    int length = 0;
    if (candidate == 0) {
        const char* file = Environment("VEMRADO_REGISTRY");
        if (file != nullptr) length = std::snprintf(path, capacity, "%s", file);
    } else if (candidate == 1) {
        const char* config = Environment("XDG_CONFIG_HOME");
        const char* home = Environment("HOME");
        if (config != nullptr) {
            length = std::snprintf(path, capacity, "%s/vemrado/registry.reg", config);
        } else if (home != nullptr) {
            length = std::snprintf(path, capacity, "%s/.config/vemrado/registry.reg", home);
        }
    } else {
        length = std::snprintf(path, capacity, "/etc/vemrado/registry.reg");
    }
    if (length < 0 || static_cast<size_t>(length) >= capacity) path[0] = '\0';
}

// The first candidate that exists; one that exists but cannot be opened counts as an empty registry.
bool OpenRegistryFile(File& file) {
    for (int candidate = 0; candidate < candidateCount; ++candidate) {
        char path[PATH_MAX];
        CandidatePath(candidate, path, sizeof path);
        if (path[0] == '\0') continue;
        if (file.Open(path)) return true;
        if (file.LastError() != ENOENT && file.LastError() != ENOTDIR) return false;
    }
    return false;
}

// Everything that the file holds, in a block of the heap that grows with it: a pipe or a provider's file need
// not have a length. Null when it is too large or cannot be read.
char* ReadWhole(File& file, size_t& size) {
    char* text = nullptr;
    size_t capacity = 0;
    size = 0;
    while (true) {
        if (size == capacity) {
            capacity = capacity == 0 ? 65536 : capacity * 4;
            char* larger = static_cast<char*>(ReallocateOnHeap(text, capacity));
            if (larger == nullptr) break;
            text = larger;
        }
        const int64_t count = file.Read(text + size, capacity - size);
        if (count == 0) return text;
        if (count < 0) break;
        size += static_cast<size_t>(count);
        if (size > largestRegFile) break;
    }
    FreeOnHeap(text);
    return nullptr;
}

}  // namespace

bool NativeQueryRegistryValue(RegistryRoot, const char* subkey, const char* name, uint32_t* type, char* data,
                              uint32_t* size) {
    File file;
    if (!OpenRegistryFile(file)) return false;
    size_t length = 0;
    char* text = ReadWhole(file, length);
    if (text == nullptr) return false;
    const bool found = QueryRegFile({text, length}, subkey, name, type, data, size);
    FreeOnHeap(text);
    return found;
}

}  // namespace vemrado::platform
