// The module's allocation on top of mainPool. What the pool itself does is tested on pools of the tests' own.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "platform/memory_faults.h"
#include "support/containers.h"
#include "support/memory_pool.h"
#include "support/pool_test_peer.h"

namespace vemrado {
namespace {

bool IsAligned(const void* address, size_t alignment) {
    return reinterpret_cast<uintptr_t>(address) % alignment == 0;
}

TEST(AllocationTest, AlignsAndFreesEveryKindOfBlock) {
    const int32_t before = mainPool.RegionCount();
    std::vector<char*> blocks;
    for (size_t alignment = 1; alignment <= 65536; alignment *= 2) {
        for (const size_t size : {1u, 4u, 5u, 24u, 100u, 1000u}) {
            char* block = static_cast<char*>(AllocateMemory(size, alignment));
            ASSERT_NE(block, nullptr);
            EXPECT_TRUE(IsAligned(block, alignment)) << size << " at " << alignment;
            std::memset(block, 0xFF, size);
            blocks.push_back(block);
        }
    }
    PoolTestPeer::Walk(mainPool);
    std::shuffle(blocks.begin(), blocks.end(), std::minstd_rand(3));
    for (char* block : blocks) FreeMemory(block);
    FreeMemory(nullptr);
    PoolTestPeer::Walk(mainPool);
    EXPECT_EQ(mainPool.RegionCount(), before);
}

TEST(AllocationTest, ASecondFreeChangesNothing) {
    void* neighbour = AllocateMemory(16, 4);
    for (const size_t alignment : {4u, 8u, 16u, 32u, 4096u}) {
        void* block = AllocateMemory(24, alignment);
        FreeMemory(block);
        const auto walked = PoolTestPeer::Walk(mainPool);
        FreeMemory(block);
        EXPECT_EQ(PoolTestPeer::Walk(mainPool), walked) << alignment;
    }
    FreeMemory(neighbour);
}

TEST(AllocationTest, RefusesWhatDoesNotFit) {
    constexpr size_t largest = CMemoryPool::largestRequest;
    const struct {
        size_t size;
        size_t alignment;
    } cases[] = {{0, 4},
                 {0, 16},
                 {largest + 1, 4},
                 {largest - 3, 8},
                 {largest, 16},
                 {1, 131072},
                 {~size_t{0}, 4},
                 {~size_t{0}, 8},
                 {~size_t{0} - 60, 64},
                 {size_t{1} << 32, 4},
                 {(size_t{1} << 32) + 8, 4},
                 {(size_t{1} << 32) + 8, 8}};
    for (const auto& test : cases) {
        EXPECT_EQ(AllocateMemory(test.size, test.alignment), nullptr)
            << test.size << " at " << test.alignment;
    }
}

TEST(AllocationTest, ContainersThrowWhenMemoryRunsOut) {
    const int32_t before = mainPool.RegionCount();
    {
        Array<double> numbers(100, 1.0);
        platform::memoryCallsLeft = 0;
        EXPECT_THROW(numbers.resize(1000000), std::bad_alloc);
        EXPECT_THROW(String(1000000, 'x'), std::bad_alloc);
        platform::memoryCallsLeft = -1;
        EXPECT_EQ(numbers, Array<double>(100, 1.0));
    }
    EXPECT_EQ(mainPool.RegionCount(), before);
}

#if defined(VEMRADO_ADDRESS_SANITIZER)
TEST(AllocationDeathTest, TheAddressSanitizerSeesTheBoundsOfBlocks) {
    void* kept = AllocateMemory(16, 4);
    for (const size_t alignment : {4u, 8u, 16u, 64u}) {
        for (const size_t size : {1u, 4u, 7u, 8u, 21u, 24u, 100u}) {
            char* block = static_cast<char*>(AllocateMemory(size, alignment));
            EXPECT_EQ(__asan_region_is_poisoned(block, size), nullptr);
            EXPECT_TRUE(__asan_address_is_poisoned(block + size)) << size << " at " << alignment;
            EXPECT_TRUE(alignment == 4 || __asan_address_is_poisoned(block - 1))
                << size << " at " << alignment;
            FreeMemory(block);
            EXPECT_TRUE(__asan_address_is_poisoned(block + size / 2)) << size << " at " << alignment;
        }
    }
    volatile char* block = static_cast<char*>(AllocateMemory(24, 8));
    block[23] = 'x';
    EXPECT_DEATH(block[24] = 'x', "use-after-poison");
    FreeMemory(const_cast<char*>(block));
    EXPECT_DEATH(block[8] = 'x', "use-after-poison");
    FreeMemory(kept);
}
#endif

}  // namespace
}  // namespace vemrado
