#include "platform/lock.h"

#include <windows.h>

namespace vemrado::platform {

static_assert(sizeof(SRWLOCK) == sizeof(void*));

void Lock::Acquire() {
    AcquireSRWLockExclusive(reinterpret_cast<PSRWLOCK>(&state));
}

void Lock::Release() {
    ReleaseSRWLockExclusive(reinterpret_cast<PSRWLOCK>(&state));
}

uintptr_t CurrentThread() {
    return GetCurrentThreadId();
}

}  // namespace vemrado::platform
