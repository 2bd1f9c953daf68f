#include "convert_jobs.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <new>
#include <thread>
#include <vector>

namespace vemrado::tools {
namespace {

// What the processes share: an array in memory that a fork does not copy.
template <typename Entry>
class SharedArray {
  public:
    explicit SharedArray(size_t count)
        : size(count * sizeof(Entry)),
          place(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (place == MAP_FAILED) throw std::bad_alloc();
        entries = new (place) Entry[count];
    }
    SharedArray(const SharedArray&) = delete;
    SharedArray& operator=(const SharedArray&) = delete;
    ~SharedArray() { munmap(place, size); }

    Entry& operator[](size_t i) const { return entries[i]; }

  private:
    size_t size;
    void* place;
    Entry* entries = nullptr;
};

class Workers {
  public:
    Workers(size_t jobCount, size_t limit, const Jobs& wanted)
        : count(jobCount), jobs(wanted), board(1), current(limit), processes(limit, none) {}

    int Run() {
        std::signal(SIGCHLD, SIG_DFL);  // a parent that ignores it would take the results away
        for (size_t place = 0; place < processes.size(); ++place) Start(place);
        // Without a single process the work is done here.
        if (std::ranges::count(processes, none) == static_cast<std::ptrdiff_t>(processes.size()))
            code = WorkThrough(0);
        while (std::ranges::any_of(processes, [](pid_t process) { return process != none; })) {
            constexpr std::chrono::milliseconds turn(20);
            std::this_thread::sleep_for(turn);
            jobs.progress(board[0].finished);
            for (size_t place = 0; place < processes.size(); ++place) Look(place);
        }
        return code;
    }

  private:
    static constexpr pid_t none = 0;

    struct Board {
        std::atomic<size_t> next = 0;
        std::atomic<size_t> finished = 0;
    };

    int WorkThrough(size_t place) {
        int highest = 0;
        for (size_t i = board[0].next++; i < count; i = board[0].next++) {
            current[place] = i;
            highest = std::max(highest, jobs.work(i));
            ++board[0].finished;
        }
        return highest;
    }

    void Start(size_t place) {
        const pid_t process = fork();
        if (process == 0) {
            const int result = WorkThrough(place);
            std::fflush(nullptr);
            _exit(result);
        }
        if (process > 0) processes[place] = process;
    }

    // Takes the result of a process that has ended.
    void Look(size_t place) {
        int status = 0;
        if (processes[place] == none || waitpid(processes[place], &status, WNOHANG) != processes[place])
            return;
        const auto number = static_cast<unsigned long>(processes[place]);
        processes[place] = none;
        if (WIFEXITED(status)) {
            code = std::max(code, WEXITSTATUS(status));
            return;
        }
        code = std::max(code, jobs.broken(current[place], number, WTERMSIG(status)));
        if (board[0].next < count) Start(place);
    }

    size_t count;
    const Jobs& jobs;
    SharedArray<Board> board;
    SharedArray<std::atomic<size_t>> current;  // job of each process
    std::vector<pid_t> processes;
    int code = 0;
};

}  // namespace

int RunJobs(size_t count, int processes, const Jobs& jobs) {
    return Workers(count, std::min(count, static_cast<size_t>(processes)), jobs).Run();
}

}  // namespace vemrado::tools
