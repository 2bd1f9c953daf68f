// Looks into a pool: its lists, and its regions block by block.

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/memory_pool.h"
#include "support/memory_pool_words.h"

namespace vemrado {

struct WalkedBlock {
    char* block;
    uint32_t size;
    bool free;

    bool operator==(const WalkedBlock&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const WalkedBlock& walked) {
    return stream << static_cast<void*>(walked.block) << ' ' << walked.size
                  << (walked.free ? " free" : " used");
}

class PoolTestPeer {
  public:
    using Region = std::vector<WalkedBlock>;

    static uint32_t Header(const void* block) { return pool::Load(static_cast<const char*>(block) - 4); }
    static uint32_t Trailer(const void* block) {
        return pool::Load(static_cast<const char*>(block) + (Header(block) & pool::sizeMask));
    }
    static void SetTrailer(void* block, uint32_t word) {
        pool::Store(static_cast<char*>(block) + (Header(block) & pool::sizeMask), word);
    }

    static char* LastFreeBlock(const CMemoryPool& pool) { return pool.lastFreeBlock; }
    static int32_t FreeCapacity(const CMemoryPool& pool) { return pool.freeCapacity; }
    static uint32_t ListedSize(const CMemoryPool& pool, int index) { return pool.freeBlocks[index].size; }
    static uint32_t RegionSize(const CMemoryPool& pool, int index) { return pool.regions[index].size; }
    static int32_t ListCapacities(const CMemoryPool& pool) { return pool.freeCapacity + pool.regionCapacity; }

    // The block that a request of a size, already a multiple of 4, is cut from; null: a new region.
    static char* Candidate(const CMemoryPool& pool, uint32_t size) {
        const auto fits = [&](int32_t index) { return pool.freeBlocks[index].size >= size; };
        if (pool.lastFreeBlock != nullptr && fits(pool.lastFreeIndex)) return pool.lastFreeBlock;
        for (int32_t index = pool.freeCount - 1; index >= 0; --index) {
            if (fits(index)) return pool.freeBlocks[index].block;
        }
        return nullptr;
    }

    // Every region with its blocks, in the order of the list. Fails the test where an invariant does not
    // hold; unlisted is the number of free blocks that the pool could not list.
    static std::vector<Region> Walk(const CMemoryPool& pool, int32_t unlisted = 0) {
        std::vector<Region> regions;
        int32_t free = 0;
        for (int32_t index = 0; index < pool.regionCount; ++index) {
            regions.push_back(WalkRegion(pool, pool.regions[index].base, pool.regions[index].size));
            for (const WalkedBlock& walked : regions.back()) free += walked.free;
        }
        EXPECT_EQ(pool.freeCount, free - unlisted);
        if (pool.lastFreeBlock != nullptr) {
            EXPECT_LT(pool.lastFreeIndex, pool.freeCount);
            EXPECT_EQ(pool.freeBlocks[pool.lastFreeIndex].block, pool.lastFreeBlock);
        }
        return regions;
    }

  private:
    static Region WalkRegion(const CMemoryPool& pool, char* base, uint32_t regionSize) {
        Region blocks;
        char* const end = base + regionSize;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(base) % 65536, 0u);
        for (char* block = base + 4; block < end; block += blocks.back().size + 8) {
            const uint32_t size = Header(block) & pool::sizeMask;
            const bool isFree = (Header(block) & pool::freeBit) != 0;
            if (block + size + 4 > end) {
                ADD_FAILURE() << "a block runs past its region";
                break;
            }
            const uint32_t first = block == base + 4 ? pool::edgeBit : 0;
            const uint32_t last = block + size + 4 == end ? pool::edgeBit : 0;
            EXPECT_EQ(Header(block), size | isFree | first);
            EXPECT_EQ(Trailer(block), size | isFree | last);
            EXPECT_FALSE(isFree && !blocks.empty() && blocks.back().free) << "free neighbours";
            if (isFree) CheckListed(pool, block, size);
            blocks.push_back({block, size, isFree});
        }
        EXPECT_FALSE(blocks.size() == 1 && blocks[0].free) << "an empty region was kept";
        return blocks;
    }

    static void CheckListed(const CMemoryPool& pool, const char* block, uint32_t size) {
        const uint32_t index = pool::Load(block);
        if (index == 0xFFFFFFFFu) return;
        ASSERT_LT(index, static_cast<uint32_t>(pool.freeCount));
        EXPECT_EQ(pool.freeBlocks[index].block, block);
        EXPECT_EQ(pool.freeBlocks[index].size, size);
    }
};

}  // namespace vemrado
