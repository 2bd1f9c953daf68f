// The memory requests of the module's library, counted and made to fail.

#pragma once

#include <cstdint>

namespace vemrado_test {

struct CountedMemory {
    int failing = 0;        // the request that fails, counted from 1; 0: none
    bool andLater = false;  // and so do all that follow
    int requests = 0;       // so far
    int64_t blocks = 0;     // that were handed out and not given back
    int64_t mappedBytes = 0;

    void StartFailing(int request, bool later) {
        failing = request;
        andLater = later;
        requests = 0;
    }
    void StopFailing() { failing = 0; }
};

extern CountedMemory countedMemory;

}  // namespace vemrado_test
