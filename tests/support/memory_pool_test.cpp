#include "support/memory_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>

#include "platform/memory_faults.h"
#include "platform/platform.h"
#include "support/pool_test_peer.h"

namespace vemrado {
namespace {

using Peer = PoolTestPeer;

class MemoryPoolTest : public testing::Test {
  protected:
    ~MemoryPoolTest() override { platform::memoryCallsLeft = -1; }

    char* Alloc(uint32_t size) { return static_cast<char*>(pool.Alloc(size)); }
    // Sizes of the blocks of the only region, free ones negative.
    std::vector<int64_t> Sizes() {
        std::vector<int64_t> sizes;
        const auto regions = Peer::Walk(pool);
        EXPECT_EQ(regions.size(), 1u);
        for (const auto& region : regions) {
            for (const auto& walked : region)
                sizes.push_back(walked.free ? -int64_t{walked.size} : walked.size);
        }
        return sizes;
    }

    CMemoryPool pool{"unittest"};
};

using Sizes64 = std::vector<int64_t>;

TEST_F(MemoryPoolTest, KeepsSixCharactersOfItsName) {
    EXPECT_STREQ(pool.Name(), "unitte");
    EXPECT_STREQ(mainPool.Name(), "main");
    EXPECT_STREQ(stringPool.Name(), "string");
}

TEST_F(MemoryPoolTest, CarvesANewRegion) {
    const struct {
        uint32_t request;
        uint32_t region;
        Sizes64 blocks;
    } cases[] = {
        {1, 65536, {4, -65516}},          {4, 65536, {4, -65516}},    {5, 65536, {8, -65512}},
        {65516, 65536, {65516, -4}},      {65517, 65536, {65528}},    {65528, 65536, {65528}},
        {65529, 131072, {65532, -65524}}, {131064, 131072, {131064}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.request);
        char* block = Alloc(test.request);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 65536, 4u);
        EXPECT_EQ(Peer::RegionSize(pool, 0), test.region);
        EXPECT_EQ(Sizes(), test.blocks);
        EXPECT_EQ(Peer::LastFreeBlock(pool), test.blocks.size() == 1 ? nullptr : block + test.blocks[0] + 8);
        EXPECT_EQ(pool.Free(block), 1);
        EXPECT_EQ(pool.RegionCount(), 0);
        EXPECT_EQ(pool.FreeCount(), 0);
    }
}

TEST_F(MemoryPoolTest, RefusesSizesThatDoNotFitTheFormat) {
    for (const uint32_t size : {0u, CMemoryPool::largestRequest + 1, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
        EXPECT_EQ(pool.Alloc(size), nullptr) << size;
    }
    EXPECT_EQ(pool.RegionCount(), 0);
    void* largest = pool.Alloc(CMemoryPool::largestRequest);
    if (largest == nullptr) GTEST_SKIP() << "this system has no 4 GiB to reserve";
    EXPECT_EQ(Sizes(), Sizes64{CMemoryPool::largestRequest});
    EXPECT_EQ(pool.Free(largest), 1);
}

// A hole of 100 bytes between allocated blocks, then one request.
TEST_F(MemoryPoolTest, SplitsAFreeBlockFromItsEndOrTakesItWhole) {
    const struct {
        uint32_t request;
        Sizes64 hole;
        int offset;
    } cases[] = {{4, {-88, 4}, 96}, {87, {-4, 88}, 12}, {88, {-4, 88}, 12}, {89, {100}, 0}, {100, {100}, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.request);
        char* first = Alloc(8);
        Alloc(65536 - 16 - 108 - 24 - 16);  // leaves a rest for the hole and its far neighbour
        char* rest = Peer::LastFreeBlock(pool);
        ASSERT_NE(rest, nullptr);
        EXPECT_EQ(pool.FreeCount(), 1);
        Alloc(Peer::ListedSize(pool, 0) - 108);
        ASSERT_EQ(Peer::ListedSize(pool, 0), 100u);
        EXPECT_EQ(Alloc(test.request), rest + test.offset);
        Sizes64 blocks = Sizes();
        blocks.resize(1 + test.hole.size());
        blocks.erase(blocks.begin());
        EXPECT_EQ(blocks, test.hole);
        EXPECT_EQ(first + 16, rest);
        pool.ReleaseAll();
    }
}

// Three blocks at the start of a region that holds a fourth, freed in every order.
TEST_F(MemoryPoolTest, JoinsFreeNeighboursInAnyOrder) {
    int order[] = {0, 1, 2};
    do {
        for (const bool keepFourth : {true, false}) {
            SCOPED_TRACE(testing::PrintToString(order));
            char* fourth = Alloc(20);
            char* blocks[3];
            for (char*& block : blocks) block = Alloc(40);
            if (!keepFourth) {
                std::swap(blocks[0], fourth);
                pool.Free(fourth);
            }
            for (const int index : order) {
                EXPECT_EQ(pool.Free(blocks[index]), 1);
                Peer::Walk(pool);
            }
            if (keepFourth) {
                EXPECT_EQ(Sizes(), (Sizes64{20, -65500}));
            }
            EXPECT_EQ(pool.RegionCount(), keepFourth ? 1 : 0);
            pool.ReleaseAll();
        }
    } while (std::next_permutation(std::begin(order), std::end(order)));
}

TEST_F(MemoryPoolTest, RefusesWhatIsNoAllocatedBlock) {
    char* blocks[5];
    for (char*& block : blocks) block = Alloc(32);
    std::sort(std::begin(blocks), std::end(blocks));
    EXPECT_EQ(pool.Free(nullptr), 0);
    EXPECT_EQ(pool.Free(blocks[1] + 2), 0);
    // Freed alone, joined to the one before, to the one after, to both: each is refused a second time.
    for (const int index : {1, 3, 4, 2}) {
        EXPECT_EQ(pool.Free(blocks[index]), 1);
        const auto before = Peer::Walk(pool);
        EXPECT_EQ(pool.Free(blocks[index]), 0) << index;
        EXPECT_EQ(Peer::Walk(pool), before);
    }
}

TEST_F(MemoryPoolTest, DamagedWordsChangeNothing) {
    char* kept = Alloc(8);
    char* damaged = Alloc(24);
    char* neighbour = Alloc(24);
    const uint32_t good = Peer::Trailer(damaged);
    for (const uint32_t word : {0u, 28u, good + 4, good | pool::freeBit}) {
        Peer::SetTrailer(damaged, word);
        EXPECT_EQ(pool.Free(damaged), 0);
        EXPECT_EQ(pool.FreeCount(), 1);
    }
    Peer::SetTrailer(damaged, good);
    // A free neighbour whose far word does not fit its near one, before the block and after it.
    char* rest = Peer::LastFreeBlock(pool);
    const uint32_t goodOfRest = Peer::Trailer(rest);
    Peer::SetTrailer(rest, 4 | pool::freeBit);
    EXPECT_EQ(pool.Free(neighbour), 0);
    Peer::SetTrailer(rest, goodOfRest);
    EXPECT_EQ(neighbour + 32, damaged);
    EXPECT_EQ(pool.Free(damaged), 1);
    Peer::SetTrailer(damaged, 4);
    EXPECT_EQ(pool.Free(neighbour), 0);
    EXPECT_EQ(pool.Alloc(24), nullptr) << "the damaged block is the candidate";
    static_cast<void>(kept);
}

TEST_F(MemoryPoolTest, GivesNullWhenMemoryRunsOut) {
    for (const int served : {0, 1}) {  // no region; no list of regions
        platform::memoryCallsLeft = served;
        EXPECT_EQ(pool.Alloc(1), nullptr);
        EXPECT_EQ(pool.RegionCount(), 0);
    }
    platform::memoryCallsLeft = 2;  // no list of free blocks: the rest of the region stays unlisted
    char* block = Alloc(40);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(pool.FreeCount(), 0);
    Peer::Walk(pool, 1);
    platform::memoryCallsLeft = -1;
    char* other = Alloc(65000);
    EXPECT_EQ(pool.RegionCount(), 2);
    EXPECT_EQ(pool.Free(block), 1) << "joins the unlisted rest and gives the region back";
    EXPECT_EQ(pool.RegionCount(), 1);
    EXPECT_EQ(pool.Free(other), 1);
    EXPECT_EQ(pool.FreeCount(), 0);
}

TEST_F(MemoryPoolTest, ListsMoreFreeBlocksThanItHadRoomFor) {
    std::vector<char*> blocks(5000);
    for (char*& block : blocks) block = Alloc(16);
    for (size_t i = 0; i < blocks.size(); i += 2) pool.Free(blocks[i]);
    EXPECT_GT(pool.FreeCount(), 2000);
    Peer::Walk(pool);
    char* candidate = Peer::Candidate(pool, 16);
    EXPECT_EQ(Alloc(16), candidate);
    pool.ReleaseAll();
}

TEST_F(MemoryPoolTest, ReleasesEverythingAndCanBeUsedAgain) {
    for (int round = 0; round < 2; ++round) {
        for (int count = 0; count < 100; ++count) ASSERT_NE(pool.Alloc(5000), nullptr);
        EXPECT_GT(pool.RegionCount(), 5);
        const int32_t capacities = Peer::ListCapacities(pool);
        pool.ReleaseAll();
        EXPECT_EQ(pool.RegionCount() + pool.FreeCount(), 0);
        EXPECT_EQ(Peer::LastFreeBlock(pool), nullptr);
        EXPECT_EQ(Peer::ListCapacities(pool), capacities);
    }
}

// Random requests, each checked against what the lists before it ask for, and the whole pool walked after it.
class RandomUse {
  public:
    RandomUse(CMemoryPool& used, unsigned seed) : pool(used), random(seed) {}

    void AllocOne() {
        const uint32_t size = RandomSize();
        const uint32_t rounded = (size + 3) / 4 * 4;
        char* candidate = Peer::Candidate(pool, rounded);
        const uint32_t before = candidate != nullptr ? Peer::Header(candidate) & pool::sizeMask : 0;
        const int32_t regions = pool.RegionCount();
        char* block = static_cast<char*>(pool.Alloc(size));
        ASSERT_NE(block, nullptr);
        if (candidate == nullptr) {
            EXPECT_EQ(pool.RegionCount(), regions + 1);
        } else {
            EXPECT_EQ(block, before >= rounded + 12 ? candidate + before - rounded : candidate);
        }
        std::memset(block, Pattern(size), size);
        live[block] = size;
    }

    void FreeOne() {
        if (live.empty()) return;
        const auto taken = std::next(live.begin(), static_cast<long>(random() % live.size()));
        char* block = taken->first;
        const uint32_t size = taken->second;
        EXPECT_TRUE(std::all_of(block, block + size, [&](char byte) { return byte == Pattern(size); }));
        EXPECT_EQ(pool.Free(block), 1);
        live.erase(taken);
    }

    // The used blocks of the walk are the ones that are live, and large enough.
    void Check() {
        size_t used = 0;
        for (const auto& region : Peer::Walk(pool)) {
            for (const WalkedBlock& walked : region) {
                if (walked.free) continue;
                ++used;
                const auto found = live.find(walked.block);
                ASSERT_NE(found, live.end());
                ASSERT_GE(walked.size, found->second);
                ASSERT_LE(walked.size, found->second + 3 + 16);
            }
        }
        ASSERT_EQ(used, live.size());
    }

    size_t LiveCount() const { return live.size(); }
    uint32_t Random(uint32_t limit) { return static_cast<uint32_t>(random()) % limit; }

  private:
    uint32_t RandomSize() {
        constexpr uint32_t limits[] = {16, 64, 64, 400, 4000, 70000, 200000};
        return 1 + Random(limits[Random(std::size(limits))]);
    }
    static char Pattern(uint32_t size) { return static_cast<char>(size * 7 + 1); }

    CMemoryPool& pool;
    std::minstd_rand random;
    std::map<char*, uint32_t> live;
};

TEST_F(MemoryPoolTest, HoldsItsInvariantsUnderRandomUse) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        RandomUse use(pool, seed);
        for (int step = 0; step < 3000 && !HasFailure(); ++step) {
            // Grows and shrinks in waves, so that lists, holes and regions come and go.
            const bool growing = step / 500 % 2 == 0;
            use.Random(100) < (growing ? 65 : 35) ? use.AllocOne() : use.FreeOne();
            use.Check();
        }
        while (use.LiveCount() != 0) use.FreeOne();
        EXPECT_EQ(pool.RegionCount() + pool.FreeCount(), 0);
    }
}

}  // namespace
}  // namespace vemrado
