#include "support/data_directories.h"

#include <utility>

namespace vemrado {

namespace {

constexpr char hostKey[] = "Velka";
constexpr char iniKey[] = "Software\\Zorvat\\Ini\\";
constexpr char iniKeyOf32BitPrograms[] = "SOFTWARE\\Wow6432Node\\Zorvat\\Ini\\";
constexpr char symbolSubdirectory[] = "\\VKMSym\\";

bool IsAbsolute(const char* path) {
    return path[0] != '\0' && (path[1] == ':' || (path[0] == '\\' && path[1] == '\\'));
}

String WithRelativePath(String directory, const char* relative) {
    return relative != nullptr && !directory.empty() ? MakeFullPath(relative, directory) : directory;
}

}  // namespace

String ReadRegistryString(platform::RegistryRoot root, const char* subkey, const char* name,
                          const char* defaultText) {
    uint32_t type = 0;
    uint32_t size = 0;
    if (!platform::QueryRegistryValue(root, subkey, name, &type, nullptr, &size) ||
        type != platform::registryString) {
        return defaultText;
    }
    String text(size, '\0');
    if (!platform::QueryRegistryValue(root, subkey, name, &type, text.data(), &size)) return defaultText;
    return text.substr(0, text.find('\0'));
}

String ReadIniPath(const char* subkey, const char* name) {
    const auto read = [=](const char* prefix) {
        return ReadRegistryString(platform::RegistryRoot::localMachine, String(prefix).append(subkey).c_str(),
                                  name, "");
    };
    const String native = read(iniKey);
    return native.empty() ? read(iniKeyOf32BitPrograms) : native;
}

String MakeFullPath(const char* relative, const String& base) {
    if (relative == nullptr || relative[0] == '\0') return base;
    if (IsAbsolute(relative)) return relative;
    String path(base);
    if (path.empty() || path.back() != '\\') path += '\\';
    return path.append(relative);
}

String GetSharedPath(const char* relative) {
    return WithRelativePath(ReadIniPath(hostKey, "SharedPath"), relative);
}

String GetLocalPath(const char* relative) {
    String directory = ReadIniPath(hostKey, "LocalPath");
    if (directory.empty()) directory = GetSharedPath();
    return WithRelativePath(std::move(directory), relative);
}

String GetSymbolDirectory(const String& dataDirectory) {
    return (dataDirectory.empty() ? GetLocalPath() : dataDirectory) + symbolSubdirectory;
}

}  // namespace vemrado
