#include "support/memory_pool.h"

#include <algorithm>
#include <cstring>

#include "platform/platform.h"
#include "support/memory_pool_words.h"

namespace vemrado {

using namespace pool;

using Holding = platform::Holding<platform::Lock>;

namespace {

// A free part that splitting leaves has at least one word: n + 8 for the allocated part, 4 for the rest.
constexpr uint32_t smallestSplit = 12;
// A new region's rest needs two words of its own and the allocated block's two, and one word to hold its
// index.
constexpr uint32_t smallestRegionRest = 20;
constexpr uint32_t notListed = 0xFFFFFFFFu;

// Capacity of a full list of the process heap once it has grown; 0 when it cannot.
int32_t LargerCapacity(int32_t count) {
    const int64_t larger = int64_t{count} + count / 2 + 256;
    return larger <= INT32_MAX ? static_cast<int32_t>(larger) : 0;
}

// The list of free blocks in stretches, each with an upper bound of its sizes: a search passes over a stretch
// that cannot serve it without looking at its entries, and finds the same entry as one that looks at all.
constexpr int32_t stretch = 64;
constexpr size_t StretchCount(int32_t capacity) {
    return (static_cast<size_t>(capacity) + stretch - 1) / stretch;
}

}  // namespace

CMemoryPool::~CMemoryPool() {
    ReleaseAll();
    platform::FreeOnHeap(freeBlocks);
    platform::FreeOnHeap(regions);
    freeBlocks = nullptr;
    regions = nullptr;
    freeCapacity = 0;
    regionCapacity = 0;
}

void CMemoryPool::ReleaseAll() {
    const Holding holding(lock);
    while (regionCount > 0) {
        const RegionEntry& last = regions[--regionCount];
        Unpoison(last.base, last.size);
        platform::ReleaseRegion(last.base, last.size);
    }
    freeCount = 0;
    lastFreeBlock = nullptr;
    lastFreeIndex = 0;
}

// --- Allocation ---

void* CMemoryPool::Alloc(uint32_t size) {
    if (size == 0 || size > largestRequest) return nullptr;
    const uint32_t rounded = (size + wordSize - 1) & sizeMask;
    const Holding holding(lock);
    const int32_t index = FindFreeBlock(rounded);
    char* block = index >= 0 ? TakeFreeBlock(index, rounded) : TakeFromNewRegion(rounded);
    if (block != nullptr) Unpoison(block, size);
    return block;
}

// The block listed last is tried first, then the others from the newest on. -1: none is large enough.
inline int32_t CMemoryPool::FindFreeBlock(uint32_t size) {
    if (lastFreeBlock != nullptr && freeBlocks[lastFreeIndex].size >= size) return lastFreeIndex;
    uint32_t* const bounds = SizeBounds();
    int32_t end = freeCount;
    while (end > 0) {
        const int32_t first = (end - 1) / stretch * stretch;
        uint32_t& bound = bounds[first / stretch];
        if (bound >= size) {
            uint32_t largest = 0;
            for (int32_t index = end - 1; index >= first; --index) {
                if (freeBlocks[index].size >= size) return index;
                largest = std::max(largest, freeBlocks[index].size);
            }
            bound = largest;
        }
        end = first;
    }
    return -1;
}

inline char* CMemoryPool::TakeFreeBlock(int32_t index, uint32_t size) {
    char* block = freeBlocks[index].block;
    const uint32_t blockSize = freeBlocks[index].size;
    const uint32_t header = Load(HeaderOf(block));
    const uint32_t trailer = Load(TrailerOf(block, blockSize));
    if ((header & sizeMask) != blockSize || (trailer & sizeMask) != blockSize) return nullptr;

    if (blockSize - size < smallestSplit) {
        RemoveFreeBlock(static_cast<uint32_t>(index));
        SetBlock(block, blockSize, header & edgeBit, trailer & edgeBit);
        return block;
    }
    // Cut from the end, so that the free part keeps its address and its entry.
    const uint32_t rest = blockSize - size - 2 * wordSize;
    SetBlock(block, rest, (header & edgeBit) | freeBit, freeBit);
    freeBlocks[index].size = rest;
    char* taken = BlockAfter(block, rest);
    SetBlock(taken, size, 0, trailer & edgeBit);
    return taken;
}

char* CMemoryPool::TakeFromNewRegion(uint32_t size) {
    constexpr uint32_t granularity = platform::regionGranularity;
    const uint32_t regionSize = (size + 2 * wordSize + granularity - 1) & ~(granularity - 1);
    char* base = static_cast<char*>(platform::ReserveRegion(regionSize));
    if (base == nullptr) return nullptr;
    if (!AddRegion(base, regionSize)) {
        platform::ReleaseRegion(base, regionSize);
        return nullptr;
    }
    Poison(base, regionSize);
    char* block = base + wordSize;
    if (regionSize - size < smallestRegionRest) {
        SetBlock(block, regionSize - 2 * wordSize, edgeBit, edgeBit);
        return block;
    }
    SetBlock(block, size, edgeBit, 0);
    char* rest = BlockAfter(block, size);
    const uint32_t restSize = regionSize - size - 4 * wordSize;
    SetBlock(rest, restSize, freeBit, freeBit | edgeBit);
    AddFreeBlock(rest, restSize);
    return block;
}

// --- Deallocation ---

int CMemoryPool::Free(void* address) {
    if (address == nullptr || reinterpret_cast<uintptr_t>(address) % wordSize != 0) return 0;
    const Holding holding(lock);
    char* block = static_cast<char*>(address);
    const uint32_t header = Load(HeaderOf(block));
    if ((header & freeBit) != 0) return 0;
    const uint32_t size = header & sizeMask;
    const uint32_t trailer = Load(TrailerOf(block, size));
    if ((trailer & ~edgeBit) != size) return 0;

    // The neighbours' nearer words; 0 stands for a neighbour that is not free or not there.
    Neighbours near = {};
    if ((header & edgeBit) == 0) near.before = Load(HeaderOf(block) - wordSize);
    if ((trailer & edgeBit) == 0) near.after = Load(TrailerOf(block, size) + wordSize);
    return JoinAndList(block, header, trailer, near);
}

int CMemoryPool::JoinAndList(char* block, uint32_t header, uint32_t trailer, Neighbours near) {
    const uint32_t size = header & sizeMask;
    uint32_t joined = size;
    char* start = block;
    char* next = BlockAfter(block, size);
    if ((near.before & freeBit) != 0) {
        const uint32_t previousSize = near.before & sizeMask;
        start = block - 2 * wordSize - previousSize;
        header = Load(HeaderOf(start));
        if ((header & ~edgeBit) != near.before) return 0;
        joined += previousSize + 2 * wordSize;
    }
    if ((near.after & freeBit) != 0) {
        const uint32_t nextSize = near.after & sizeMask;
        trailer = Load(TrailerOf(next, nextSize));
        if ((trailer & ~edgeBit) != near.after) return 0;
        joined += nextSize + 2 * wordSize;
    }
    if (start != block) {
        if ((near.after & freeBit) != 0) RemoveFreeBlock(Load(next));
        SetFreeBlockSize(start, joined);
        // No longer a word of the format; it tells a second Free of this block.
        Store(HeaderOf(block), size | freeBit);
    } else if ((near.after & freeBit) != 0) {
        ReplaceFreeBlock(next, block, joined);
    } else {
        AddFreeBlock(block, size);
    }
    SetBlock(start, joined, (header & edgeBit) | freeBit, (trailer & edgeBit) | freeBit);
    Poison(HeaderOf(block), size + 2 * wordSize);
    if ((header & trailer & edgeBit) != 0) {
        RemoveFreeBlock(FreeIndex(start));
        ReleaseRegion(HeaderOf(start));
    }
    return 1;
}

// --- The list of free blocks ---

bool CMemoryPool::GrowFreeBlocks() {
    const int32_t capacity = LargerCapacity(freeCount);
    const size_t size =
        static_cast<size_t>(capacity) * sizeof(FreeEntry) + StretchCount(capacity) * sizeof(uint32_t);
    void* moved = capacity != 0 ? platform::ReallocateOnHeap(freeBlocks, size) : nullptr;
    if (moved == nullptr) return false;
    freeBlocks = static_cast<FreeEntry*>(moved);
    const uint32_t* before = SizeBounds();
    const size_t count = StretchCount(freeCapacity);
    freeCapacity = capacity;
    if (count != 0) std::memmove(SizeBounds(), before, count * sizeof(uint32_t));
    return true;
}

// Behind the entries there is room for.
inline uint32_t* CMemoryPool::SizeBounds() {
    return reinterpret_cast<uint32_t*>(freeBlocks + freeCapacity);
}

inline void CMemoryPool::SetEntry(int32_t index, uint32_t size, char* block) {
    freeBlocks[index] = {size, block};
    uint32_t& bound = SizeBounds()[index / stretch];
    bound = std::max(bound, size);
}

void CMemoryPool::AddFreeBlock(char* block, uint32_t size) {
    if (freeCount == freeCapacity && !GrowFreeBlocks()) {
        Store(block, notListed);
        return;
    }
    if (freeCount % stretch == 0) SizeBounds()[freeCount / stretch] = 0;
    SetEntry(freeCount, size, block);
    lastFreeBlock = block;
    lastFreeIndex = freeCount;
    Store(block, static_cast<uint32_t>(freeCount));
    ++freeCount;
}

void CMemoryPool::RemoveFreeBlock(uint32_t index) {
    if (index >= static_cast<uint32_t>(freeCount)) return;
    const auto vacated = static_cast<int32_t>(index);
    if (vacated == lastFreeIndex) lastFreeBlock = nullptr;
    const int32_t last = --freeCount;
    if (vacated == last) return;
    SetEntry(vacated, freeBlocks[last].size, freeBlocks[last].block);
    Store(freeBlocks[vacated].block, index);
    if (lastFreeIndex == last) lastFreeIndex = vacated;
}

// The place of a block in the list, or notListed. A first word that was overwritten is no place.
uint32_t CMemoryPool::FreeIndex(char* block) const {
    const uint32_t index = block == lastFreeBlock ? static_cast<uint32_t>(lastFreeIndex) : Load(block);
    const bool listed = index < static_cast<uint32_t>(freeCount) && freeBlocks[index].block == block;
    return listed ? index : notListed;
}

void CMemoryPool::SetFreeBlockSize(char* block, uint32_t size) {
    const uint32_t index = FreeIndex(block);
    if (index != notListed) SetEntry(static_cast<int32_t>(index), size, block);
}

void CMemoryPool::ReplaceFreeBlock(char* oldBlock, char* newBlock, uint32_t size) {
    const uint32_t index = FreeIndex(oldBlock);
    if (index != notListed) SetEntry(static_cast<int32_t>(index), size, newBlock);
    Store(newBlock, index);
    if (lastFreeBlock == oldBlock) lastFreeBlock = newBlock;
}

// --- The list of regions ---

bool CMemoryPool::AddRegion(char* base, uint32_t size) {
    if (regionCount == regionCapacity) {
        const int32_t capacity = LargerCapacity(regionCount);
        const size_t listSize = static_cast<size_t>(capacity) * sizeof(RegionEntry);
        void* moved = capacity != 0 ? platform::ReallocateOnHeap(regions, listSize) : nullptr;
        if (moved == nullptr) return false;
        regions = static_cast<RegionEntry*>(moved);
        regionCapacity = capacity;
    }
    regions[regionCount++] = {size, base};
    return true;
}

void CMemoryPool::ReleaseRegion(char* base) {
    for (int32_t index = 0; index < regionCount; ++index) {
        if (regions[index].base != base) continue;
        const uint32_t size = regions[index].size;
        regions[index] = regions[--regionCount];
        Unpoison(base, size);
        platform::ReleaseRegion(base, size);
        return;
    }
}

}  // namespace vemrado
