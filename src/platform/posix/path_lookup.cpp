#include "platform/posix/path_lookup.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>

#include "platform/ascii_case.h"

namespace vemrado::platform {

namespace {

// Puts the name of a directory entry that fits the component in its place. Both have the same length.
bool FindEntry(const char* directory, char* component, size_t length) {
    DIR* entries = opendir(directory);
    if (entries == nullptr) return false;
    char best[NAME_MAX + 1] = {};
    while (const dirent* entry = readdir(entries)) {
        const std::string_view name = entry->d_name;
        if (!SameWithoutCase(name, {component, length})) continue;
        if (best[0] == '\0' || name < best) best[name.copy(best, NAME_MAX)] = '\0';
    }
    closedir(entries);
    if (best[0] == '\0') return false;
    std::memcpy(component, best, length);
    return true;
}

}  // namespace

bool ConvertSeparators(const char* path, char* found, size_t capacity) {
    const std::string_view text = path;
    if (text.size() >= capacity || text.find('\\') == text.npos) return false;
    std::replace_copy(path, path + text.size() + 1, found, '\\', '/');
    return true;
}

bool FindWithoutCase(const char* path, char* found, size_t capacity) {
    const std::string_view text = path;
    if (text.size() >= std::min<size_t>(capacity, PATH_MAX) || text.empty()) return false;
    std::memcpy(found, path, text.size() + 1);
    size_t start = 0;
    while (true) {
        start = text.find_first_not_of('/', start);
        if (start == text.npos) return true;
        const size_t end = std::min(text.find('/', start), text.size());
        // The path up to this component, cut there for the length of the question.
        const char after = found[end];
        found[end] = '\0';
        bool exists = access(found, F_OK) == 0;
        if (!exists) {
            const char first = found[start];
            found[start] = '\0';
            char directory[PATH_MAX];
            std::memcpy(directory, start == 0 ? "." : found, start == 0 ? 2 : start + 1);
            found[start] = first;
            exists = FindEntry(directory, found + start, end - start);
        }
        found[end] = after;
        if (!exists) return false;
        start = end;
    }
}

}  // namespace vemrado::platform
