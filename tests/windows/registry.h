// The host's keys in the registry that the test runs in.

#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace windows_test {

constexpr const char* nativeKey = "Software\\Zorvat\\Ini\\Velka";
constexpr const char* nodeKey = "SOFTWARE\\Wow6432Node\\Zorvat\\Ini\\Velka";

// Has neither key at its start and at its end.
class Registry {
  public:
    Registry() { Clear(); }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    ~Registry() { Clear(); }

    void Clear() {
        for (const char* key : {nativeKey, nodeKey}) RegDeleteTreeA(HKEY_LOCAL_MACHINE, key);
    }
    bool Set(const char* key, const char* name, DWORD type, const void* data, size_t size) {
        return RegSetKeyValueA(HKEY_LOCAL_MACHINE, key, name, type, data, static_cast<DWORD>(size)) ==
               ERROR_SUCCESS;
    }
    bool Set(const char* key, const char* name, const std::string& text, DWORD type = REG_SZ) {
        return Set(key, name, type, text.c_str(), text.size() + 1);
    }
};

}  // namespace windows_test
