#include "platform/lock.h"

namespace vemrado::platform {

void Lock::Acquire() {
    pthread_mutex_lock(&state);
}

void Lock::Release() {
    pthread_mutex_unlock(&state);
}

uintptr_t CurrentThread() {
    return reinterpret_cast<uintptr_t>(reinterpret_cast<void*>(pthread_self()));
}

}  // namespace vemrado::platform
