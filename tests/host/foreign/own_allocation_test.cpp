// A host with an operator new of its own: the whole test program runs on it. Every block carries a mark, so a
// block that the module made and the host's operator delete gets is found at once, and calls that come from
// the module are counted.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "host/foreign/module_library.h"
#include "temporary_file.h"

namespace {

constexpr uint64_t mark = 0x564B4D2D484F5354;
size_t allocations = 0;

struct alignas(alignof(std::max_align_t)) Header {
    uint64_t mark;
};

}  // namespace

// Not inlined: the compiler would see a block of malloc's go to operator delete and warn.
[[gnu::noinline]] void* operator new(size_t size) {
    ++allocations;
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header) throw std::bad_alloc();
    header->mark = mark;
    return header + 1;
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    if (!block) return;
    Header* header = static_cast<Header*>(block) - 1;
    if (header->mark != mark) {
        std::fputs("the host's operator delete got a block that is not the host's\n", stderr);
        std::abort();
    }
    header->mark = 0;
    std::free(header);
}

void operator delete(void* block, size_t) noexcept {
    operator delete(block);
}

namespace {

TEST(OwnAllocation, IsNotUsedByTheModule) {
    std::string content = "&U 1\n";
    for (int i = 0; i < 300; ++i)
        content += "&L P 1 2 K=a-code-too-long-for-a-short-string\nL 3 4\n&T 1 2 'text'\n";
    const TemporaryFile file(content + "&K\n");
    const ModuleLibrary module;

    const size_t before = allocations;
    ForeignImporter importer(module);
    const int opened = importer.Open(file.Path());
    const size_t whenOpened = allocations;
    int elements = 0;
    while (importer.ReadNext() != 0) ++elements;
    const size_t whenRead = allocations;
    importer.Close();

    EXPECT_EQ(opened, 1);
    EXPECT_EQ(elements, 600);
    EXPECT_EQ(whenRead, whenOpened);
    // The info-window stand-in shares the host's operator new; it makes one window.
    EXPECT_LE(whenOpened - before, 4u);
}

}  // namespace
