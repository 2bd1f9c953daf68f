#include "stop_watch.h"

#include <chrono>
#include <utility>

#include "client/stop_request.h"

namespace vemrado::tools {

StopWatch::StopWatch(std::function<void()> end)
    : thread([this, atStop = std::move(end)] { Watch(atStop); }) {}

StopWatch::~StopWatch() {
    {
        const std::lock_guard lock(mutex);
        over = true;
    }
    changed.notify_one();
    thread.join();
}

void StopWatch::Watch(const std::function<void()>& end) {
    constexpr std::chrono::milliseconds tick(50);
    constexpr int patience = 4;  // ticks in which the call may yet end by itself
    std::unique_lock lock(mutex);
    for (int stopped = 0; !changed.wait_for(lock, tick, [this] { return over; });) {
        if (client::StopRequested() && ++stopped == patience) end();
    }
}

}  // namespace vemrado::tools
