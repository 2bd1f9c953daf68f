// A host that loads and unloads the module again and again.

#include <dirent.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "host/foreign/module_library.h"
#include "temporary_file.h"

namespace {

struct Footprint {
    int mappings = 0;
    int descriptors = 0;
    long residentBytes = 0;
};

Footprint Measure() {
    Footprint footprint;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) ++footprint.mappings;
    DIR* directory = opendir("/proc/self/fd");
    while (readdir(directory)) ++footprint.descriptors;
    closedir(directory);
    std::ifstream memory("/proc/self/statm");
    long pages = 0;
    memory >> pages >> pages;
    footprint.residentBytes = pages * sysconf(_SC_PAGESIZE);
    return footprint;
}

bool IsLoaded() {
    void* library = dlopen(VEMRADO_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (library) dlclose(library);
    return library != nullptr;
}

TEST(Reload, LeavesNothingBehindInAThousandRounds) {
    std::string content;
    for (int i = 0; i < 1000; ++i) content += "&L P 1 2 K=10\nL 3 4\n&T 1 2 'text'\n";
    const TemporaryFile file(content + "&K\n");
    const auto round = [&file] {
        const ModuleLibrary module;
        ForeignImporter importer(module);
        ASSERT_EQ(importer.Open(file.Path()), 1);
        for (int i = 0; i < 100; ++i) ASSERT_NE(importer.ReadNext(), 0);
        // The file is still open when the importer is destroyed.
    };

    for (int i = 0; i < 50; ++i) round();
    EXPECT_FALSE(IsLoaded());
    const Footprint before = Measure();
    for (int i = 0; i < 1000; ++i) round();
    const Footprint after = Measure();
    EXPECT_EQ(after.descriptors, before.descriptors);
#if !defined(__SANITIZE_ADDRESS__)  // keeps freed memory for a while
    EXPECT_EQ(after.mappings, before.mappings);
    EXPECT_LT(after.residentBytes, before.residentBytes + (1 << 20));
#endif
}

}  // namespace
