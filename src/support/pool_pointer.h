// Owning pointers to single objects in mainPool.

#pragma once

#include <memory>
#include <new>
#include <utility>

#include "support/memory_pool.h"

namespace vemrado {

struct PoolDelete {
    template <class T>
    void operator()(T* object) const noexcept {
        object->~T();
        FreeMemory(object);
    }
};

template <class T>
using PoolPointer = std::unique_ptr<T, PoolDelete>;

// Null when the pool has nothing. T's constructor must not throw.
template <class T, class... Arguments>
PoolPointer<T> MakeInPool(Arguments&&... arguments) noexcept {
    void* block = AllocateMemory(sizeof(T), alignof(T));
    if (block == nullptr) return nullptr;
    return PoolPointer<T>(::new (block) T(std::forward<Arguments>(arguments)...));
}

}  // namespace vemrado
