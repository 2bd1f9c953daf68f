// The standard containers over mainPool. They throw std::bad_alloc when the pool has nothing; the exported
// operations turn that into their failure result, so it never leaves the module.

#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "support/memory_pool.h"

namespace vemrado {

template <class T>
struct PoolAllocator {
    using value_type = T;

    PoolAllocator() = default;
    template <class U>
    PoolAllocator(const PoolAllocator<U>&) noexcept {}

    T* allocate(size_t count) {
        if (count > static_cast<size_t>(-1) / sizeof(T)) throw std::bad_alloc();
        void* block = AllocateMemory(count * sizeof(T), alignof(T));
        if (block == nullptr) throw std::bad_alloc();
        return static_cast<T*>(block);
    }
    void deallocate(T* block, size_t) noexcept { FreeMemory(block); }

    template <class U>
    bool operator==(const PoolAllocator<U>&) const noexcept {
        return true;
    }
};

template <class T>
using Array = std::vector<T, PoolAllocator<T>>;

using String = std::basic_string<char, std::char_traits<char>, PoolAllocator<char>>;

}  // namespace vemrado
