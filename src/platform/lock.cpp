#include "platform/lock.h"

namespace vemrado::platform {

void ReentrantLock::Acquire() {
    const uintptr_t self = CurrentThread();
    // Nobody else writes this thread's number.
    if (owner.load(std::memory_order_relaxed) == self) {
        ++depth;
        return;
    }
    lock.Acquire();
    owner.store(self, std::memory_order_relaxed);
}

void ReentrantLock::Release() {
    if (depth > 0) {
        --depth;
        return;
    }
    owner.store(0, std::memory_order_relaxed);
    lock.Release();
}

}  // namespace vemrado::platform
