// What the built library shows to the dynamic linker, read from its file.

#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Names = std::set<std::string>;

std::string ReadFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The dynamic part of a 64-bit ELF library.
class DynamicLibrary {
  public:
    explicit DynamicLibrary(const char* path) : content(ReadFile(path)) {
        const auto header = At<Elf64_Ehdr>(0);
        for (size_t i = 0; i < header.e_shnum; ++i) {
            sections.push_back(At<Elf64_Shdr>(header.e_shoff + i * sizeof(Elf64_Shdr)));
        }
    }

    Names ExportedNames() const {
        Names names;
        ForEach<Elf64_Sym>(SHT_DYNSYM, [&](const Elf64_Sym& symbol, size_t strings) {
            if (symbol.st_shndx != SHN_UNDEF) names.insert(&content[strings + symbol.st_name]);
        });
        return names;
    }

    // The texts of the dynamic entries of a kind (DT_NEEDED and so on).
    Names Texts(Elf64_Sxword tag) const {
        Names texts;
        ForEach<Elf64_Dyn>(SHT_DYNAMIC, [&](const Elf64_Dyn& entry, size_t strings) {
            if (entry.d_tag == tag) texts.insert(&content[strings + entry.d_un.d_val]);
        });
        return texts;
    }

  private:
    template <class T>
    T At(size_t offset) const {
        T value;
        std::memcpy(&value, &content.at(offset + sizeof(T) - 1) - (sizeof(T) - 1), sizeof(T));
        return value;
    }

    // Calls use with every entry of the sections of a type and the offset of the section's strings.
    template <class T, class Use>
    void ForEach(Elf64_Word type, Use use) const {
        for (const Elf64_Shdr& section : sections) {
            if (section.sh_type != type) continue;
            for (size_t at = 0; at < section.sh_size; at += sizeof(T)) {
                use(At<T>(section.sh_offset + at), sections.at(section.sh_link).sh_offset);
            }
        }
    }

    std::string content;
    std::vector<Elf64_Shdr> sections;
};

// Every word that a semicolon ends, but the closing "local: *;".
Names NamesOfVersionScript() {
    std::istringstream text(ReadFile(VEMRADO_VERSION_SCRIPT));
    Names names;
    for (std::string word; text >> word;) {
        if (word.back() == ';' && word != "*;" && word != "};") names.insert(word.substr(0, word.size() - 1));
    }
    return names;
}

TEST(Exports, AreTheInterfaceAndNothingElse) {
    const Names expected = NamesOfVersionScript();
    EXPECT_EQ(expected.size(), 7u);
    EXPECT_EQ(DynamicLibrary(VEMRADO_LIBRARY).ExportedNames(), expected);
}

TEST(Exports, TheRuntimeIsInsideAndTheHostsLibrariesAreNamedPlainly) {
    const DynamicLibrary library(VEMRADO_LIBRARY);
    const Names needed = library.Texts(DT_NEEDED);
    for (const char* name : {"libVemradoFramework.so", "libzrv320.so", "libzrvDX320.so"}) {
        EXPECT_EQ(needed.count(name), 1u) << name;
    }
    EXPECT_EQ(needed.count("libstdc++.so.6"), 0u);
}

// RPATH would come before LD_LIBRARY_PATH, so that a host could not put its own libraries first.
TEST(Exports, LibrariesAreFoundBesideTheModuleAfterTheHostsOwn) {
    const DynamicLibrary library(VEMRADO_LIBRARY);
    EXPECT_EQ(library.Texts(DT_RPATH).size(), 0u);
    ASSERT_EQ(library.Texts(DT_RUNPATH).size(), 1u);
    EXPECT_EQ(library.Texts(DT_RUNPATH).begin()->rfind("$ORIGIN", 0), 0u);
}

}  // namespace
