// A lock for the stand-ins: on Windows the compiler's own comes with a choice of thread libraries.

#pragma once

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <mutex>
#endif

namespace standin {

#if defined(_WIN32)
class Lock {
  public:
    void lock() { AcquireSRWLockExclusive(&state); }
    void unlock() { ReleaseSRWLockExclusive(&state); }

  private:
    SRWLOCK state = SRWLOCK_INIT;
};
#else
using Lock = std::mutex;
#endif

// Holds a lock for as long as it lives.
class Holding {
  public:
    explicit Holding(Lock& heldLock) : lock(heldLock) { lock.lock(); }
    ~Holding() { lock.unlock(); }
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

  private:
    Lock& lock;
};

}  // namespace standin
