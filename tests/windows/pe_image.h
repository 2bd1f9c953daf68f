// The export and import tables of a library that is loaded in this process.

#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>

struct PeImage {
    explicit PeImage(HMODULE module) : base(reinterpret_cast<const char*>(module)) {
        const auto* dos = At<IMAGE_DOS_HEADER>(0);
        header = &At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(dos->e_lfanew))->OptionalHeader;
    }

    std::set<std::string> Exports() const {
        std::set<std::string> names;
        const auto* table =
            At<IMAGE_EXPORT_DIRECTORY>(header->DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
        const auto* entries = At<DWORD>(table->AddressOfNames);
        for (DWORD i = 0; i < table->NumberOfNames; ++i) names.insert(At<char>(entries[i]));
        return names;
    }

    // Imported names by library.
    std::map<std::string, std::set<std::string>> Imports() const {
        std::map<std::string, std::set<std::string>> imports;
        const auto* library =
            At<IMAGE_IMPORT_DESCRIPTOR>(header->DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
        for (; library->Name != 0; ++library) {
            auto& names = imports[At<char>(library->Name)];
            for (const auto* entry = At<uint64_t>(library->OriginalFirstThunk); *entry != 0; ++entry) {
                names.insert(At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(*entry))->Name);
            }
        }
        return imports;
    }

  private:
    template <class T>
    const T* At(DWORD offset) const {
        return reinterpret_cast<const T*>(base + offset);
    }

    const char* base;
    const IMAGE_OPTIONAL_HEADER64* header;
};
