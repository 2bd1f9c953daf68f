// Runs the same work on several threads at once.

#pragma once

#include <functional>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <thread>
#endif

namespace vemrado_test {

// work(0) to work(count - 1), each on a thread of its own; returns when all are done.
inline void OnThreads(int count, const std::function<void(int)>& work) {
#if defined(_WIN32)
    struct Share {
        const std::function<void(int)>* work;
        int number;
    };
    std::vector<Share> shares;
    for (int i = 0; i < count; ++i) shares.push_back({&work, i});
    std::vector<HANDLE> running;
    const auto run = [](void* argument) -> DWORD {
        const auto& share = *static_cast<const Share*>(argument);
        (*share.work)(share.number);
        return 0;
    };
    for (Share& share : shares) running.push_back(CreateThread(nullptr, 0, run, &share, 0, nullptr));
    for (const HANDLE thread : running) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
#else
    std::vector<std::thread> running;
    for (int i = 0; i < count; ++i) running.emplace_back(work, i);
    for (std::thread& thread : running) thread.join();
#endif
}

}  // namespace vemrado_test
