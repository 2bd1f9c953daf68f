// Locks for what the importers of several threads share. They stand ready before any constructor has run and
// need no end. A thread that waits sleeps.

#pragma once

#include <atomic>
#include <cstdint>

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace vemrado::platform {

// Held by one thread, once.
class Lock {
  public:
    constexpr Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void Acquire();
    void Release();

  private:
#if defined(_WIN32)
    void* state = nullptr;
#else
    pthread_mutex_t state = PTHREAD_MUTEX_INITIALIZER;
#endif
};

// A number of the calling thread that no other running thread has; never 0.
uintptr_t CurrentThread();

// Held by one thread, as often as it likes.
class ReentrantLock {
  public:
    constexpr ReentrantLock() = default;

    void Acquire();
    void Release();

  private:
    Lock lock;
    std::atomic<uintptr_t> owner = 0;  // 0: free
    int depth = 0;                     // how often the owner holds it beyond the first time
};

// Holds a lock for as long as it lives.
template <class AnyLock>
class Holding {
  public:
    explicit Holding(AnyLock& heldLock) : lock(heldLock) { lock.Acquire(); }
    ~Holding() { lock.Release(); }
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

  private:
    AnyLock& lock;
};

}  // namespace vemrado::platform
