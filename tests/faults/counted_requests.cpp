// Stands around the memory requests of the module's library. The linker puts __wrap_ in front of the
// functions that it is told to wrap, and __real_ in front of the originals. Blocks of the pools count as well
// as what the pools and the C++ runtime inside the library ask of the system.

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

extern "C" {

// Of the program.
bool CountedRequestFails();
void CountedChange(int64_t blocks, int64_t mappedBytes);

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
void* __real_mmap(void* address, size_t size, int protection, int flags, int file, off_t offset);
int __real_munmap(void* address, size_t size);
void* __real__ZN7vemrado11CMemoryPool5AllocEj(void* pool, uint32_t size);
int __real__ZN7vemrado11CMemoryPool4FreeEPv(void* pool, void* block);

}  // extern "C"

namespace {

void* Counted(void* block) {
    if (block != nullptr) CountedChange(1, 0);
    return block;
}

}  // namespace

extern "C" {

void* __wrap_malloc(size_t size) {
    return CountedRequestFails() ? nullptr : Counted(__real_malloc(size));
}

void* __wrap_calloc(size_t count, size_t size) {
    return CountedRequestFails() ? nullptr : Counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, size_t size) {
    if (CountedRequestFails()) return nullptr;
    void* moved = __real_realloc(block, size);
    return block == nullptr ? Counted(moved) : moved;
}

void __wrap_free(void* block) {
    if (block != nullptr) CountedChange(-1, 0);
    __real_free(block);
}

void* __wrap_mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) {
    if (CountedRequestFails()) return MAP_FAILED;
    CountedChange(0, static_cast<int64_t>(size));
    return __real_mmap(address, size, protection, flags, file, offset);
}

int __wrap_munmap(void* address, size_t size) {
    CountedChange(0, -static_cast<int64_t>(size));
    return __real_munmap(address, size);
}

void* __wrap__ZN7vemrado11CMemoryPool5AllocEj(void* pool, uint32_t size) {
    return CountedRequestFails() ? nullptr : Counted(__real__ZN7vemrado11CMemoryPool5AllocEj(pool, size));
}

int __wrap__ZN7vemrado11CMemoryPool4FreeEPv(void* pool, void* block) {
    const int freed = __real__ZN7vemrado11CMemoryPool4FreeEPv(pool, block);
    CountedChange(-freed, 0);
    return freed;
}

}  // extern "C"
