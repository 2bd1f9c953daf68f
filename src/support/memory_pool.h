// The pool allocator behind all of the module's memory: regions from the system in multiples of 64 KiB,
// carved into blocks with boundary tags.
//
// A block is a 32-bit header, the user area and a 32-bit trailer. Both words hold the size of the user area,
// a multiple of 4; bit 0 says that the block is free, bit 1 of the header that it is the first and of the
// trailer that it is the last block of its region. A free block's first word holds its index in the free list
// (-1: not listed). Free neighbours are merged at once, and a region without an allocated block goes back to
// the system at once.
//
// Addresses are multiples of 4, not more. Any thread may call: each call holds the pool's lock. Nothing
// throws.

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/lock.h"

namespace vemrado {

class CMemoryPool {
  public:
    // Only the first 6 characters of the name are kept.
    constexpr explicit CMemoryPool(const char* poolName);
    CMemoryPool(const CMemoryPool&) = delete;
    CMemoryPool& operator=(const CMemoryPool&) = delete;
    ~CMemoryPool();

    // A user area of at least size bytes; null when size is 0 or larger than largestRequest, or when no
    // memory is to be had.
    void* Alloc(uint32_t size);
    // 1 when the block was freed; 0 when the address is null or no allocated block (nothing changes then).
    int Free(void* block);
    // Gives every region back to the system, whatever is still allocated in it.
    void ReleaseAll();

    static constexpr uint32_t largestRequest = 0xFFFEFFF8u;

    const char* Name() const { return name; }
    // For tests, while no other thread uses the pool.
    int32_t RegionCount() const { return regionCount; }
    int32_t FreeCount() const { return freeCount; }

  private:
    struct FreeEntry {
        uint32_t size;
        char* block;
    };
    struct RegionEntry {
        uint32_t size;
        char* base;
    };
    // The trailer word of the block before and the header word of the block after.
    struct Neighbours {
        uint32_t before;
        uint32_t after;
    };
    friend class PoolTestPeer;

    // With the lock held.
    int32_t FindFreeBlock(uint32_t size);
    char* TakeFreeBlock(int32_t index, uint32_t size);
    char* TakeFromNewRegion(uint32_t size);
    int JoinAndList(char* block, uint32_t header, uint32_t trailer, Neighbours near);

    void AddFreeBlock(char* block, uint32_t size);
    void RemoveFreeBlock(uint32_t index);
    void SetFreeBlockSize(char* block, uint32_t size);
    void ReplaceFreeBlock(char* oldBlock, char* newBlock, uint32_t size);
    uint32_t FreeIndex(char* block) const;
    bool GrowFreeBlocks();
    void SetEntry(int32_t index, uint32_t size, char* block);
    uint32_t* SizeBounds();
    bool AddRegion(char* base, uint32_t size);
    void ReleaseRegion(char* base);

    char name[7] = {};
    FreeEntry* freeBlocks = nullptr;
    RegionEntry* regions = nullptr;
    int32_t regionCount = 0;
    int32_t regionCapacity = 0;
    char* lastFreeBlock = nullptr;
    int32_t lastFreeIndex = 0;
    int32_t freeCount = 0;
    int32_t freeCapacity = 0;
    platform::Lock lock;
};

constexpr CMemoryPool::CMemoryPool(const char* poolName) {
    for (int i = 0; i < 6 && poolName[i] != '\0'; ++i) name[i] = poolName[i];
}

extern CMemoryPool mainPool;    // everything that the module creates
extern CMemoryPool stringPool;  // the shared strings of the shape file reader

// The module's allocation on top of mainPool, with real alignment (a power of two, at most 64 KiB). Null on
// failure and for a size of 0. Every block goes back through FreeMemory, which ignores null.
void* AllocateMemory(size_t size, size_t alignment);
void FreeMemory(void* block);

}  // namespace vemrado
