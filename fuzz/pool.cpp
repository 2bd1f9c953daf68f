// The memory pool against a shadow model: a map of what is allocated, each block filled with its own pattern.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>

#include "support/memory_pool.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

struct Shadow {
    size_t size;
    unsigned char fill;
};

// Of a large block only so many bytes at its start and its end are filled and looked at: what the pool writes
// wrongly is a word beside a block.
constexpr size_t edge = 256;

void Fill(char* block, const Shadow& shadow) {
    const size_t filled = std::min(shadow.size, edge);
    std::memset(block, shadow.fill, filled);
    std::memset(block + shadow.size - filled, shadow.fill, filled);
}

void RequireFill(const char* block, const Shadow& shadow) {
    const size_t filled = std::min(shadow.size, edge);
    char expected[edge];
    std::memset(expected, shadow.fill, filled);
    Require(std::memcmp(block, expected, filled) == 0, "a block keeps its first bytes");
    Require(std::memcmp(block + shadow.size - filled, expected, filled) == 0, "a block keeps its last bytes");
}

void RequireApart(const std::map<char*, Shadow>& blocks, std::map<char*, Shadow>::const_iterator at) {
    const auto next = std::next(at);
    Require(next == blocks.end() || at->first + at->second.size + 8 <= next->first, "blocks do not overlap");
}

// Each step takes three bytes: what, and a size or which block.
void RunSteps(std::string_view bytes) {
    vemrado::CMemoryPool pool("fuzz");
    std::map<char*, Shadow> blocks;
    Script script(bytes);
    unsigned char fill = 0;
    while (!script.Done()) {
        const unsigned int what = script.Byte();
        const unsigned int number = script.Word();
        if (what % 3 != 0 || blocks.empty()) {
            const uint32_t size = what % 16 == 1 ? number * 8u : number % 512;
            auto* block = static_cast<char*>(pool.Alloc(size));
            Require((block == nullptr) == (size == 0), "a size gives a block");
            if (block == nullptr) continue;
            Require(reinterpret_cast<uintptr_t>(block) % 4 == 0, "aligned to 4");
            const auto [at, fresh] = blocks.insert({block, {size, ++fill}});
            Fill(block, at->second);
            Require(fresh, "a block is handed out once");
            RequireApart(blocks, at);
            if (at != blocks.begin()) RequireApart(blocks, std::prev(at));
            continue;
        }
        const auto at = std::next(blocks.begin(), static_cast<std::ptrdiff_t>(number % blocks.size()));
        RequireFill(at->first, at->second);
        Require(pool.Free(at->first) == 1, "a block is freed");
        blocks.erase(at);
        if (blocks.empty()) Require(pool.RegionCount() == 0, "an empty pool holds no region");
    }
    for (const auto& [block, shadow] : blocks) {
        RequireFill(block, shadow);
        Require(pool.Free(block) == 1, "a block is freed");
    }
    Require(pool.RegionCount() == 0 && pool.FreeCount() == 0, "an empty pool holds nothing");
}

const Target target("pool", RunSteps);

}  // namespace
}  // namespace vemrado_fuzz
