// Ends the program while a call goes on that cannot be stopped.

#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace vemrado::tools {

// While it lives, the function is called a fifth of a second after the user asked to stop, in a thread of its own.
// It does not return: it ends the process.
class StopWatch {
  public:
    explicit StopWatch(std::function<void()> end);
    StopWatch(const StopWatch&) = delete;
    StopWatch& operator=(const StopWatch&) = delete;
    ~StopWatch();

  private:
    void Watch(const std::function<void()>& end);

    std::mutex mutex;
    std::condition_variable changed;
    bool over = false;
    std::thread thread;
};

}  // namespace vemrado::tools
