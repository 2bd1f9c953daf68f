#include "convert_jobs.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

namespace vemrado::tools {
namespace {

using Clock = std::chrono::steady_clock;

// One end of a pipe.
class End {
  public:
    explicit End(int opened = -1) : file(opened) {}
    End(End&& other) noexcept : file(std::exchange(other.file, -1)) {}
    End& operator=(End&& other) noexcept {
        std::swap(file, other.file);
        return *this;
    }
    ~End() {
        if (file >= 0) close(file);
    }

    int Get() const { return file; }

  private:
    int file;
};

bool WriteFully(int file, const void* bytes, size_t count) {
    const char* from = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(file, from, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        from += written;
        count -= static_cast<size_t>(written);
    }
    return true;
}

bool ReadFully(int file, void* bytes, size_t count) {
    char* to = static_cast<char*>(bytes);
    while (count > 0) {
        const ssize_t got = read(file, to, count);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        to += got;
        count -= static_cast<size_t>(got);
    }
    return true;
}

// A process that does jobs, which it is sent by number.
struct Worker {
    pid_t process = 0;
    End jobs;     // to it
    End answers;  // from it
    size_t job = 0;
    bool busy = false;
};

class Workers {
  public:
    Workers(size_t jobCount, size_t limit, const Jobs& wanted)
        : count(jobCount), jobs(wanted), workers(limit) {}

    void Run() {
        std::signal(SIGCHLD, SIG_DFL);  // a parent that ignores it would take the results away
        for (Worker& worker : workers) Start(worker);
        // Without a single process the work is done here.
        for (size_t i = 0; !AnyRuns() && i < count && jobs.done(i, jobs.work(i)); ++i) continue;
        while (AnyRuns()) {
            Wait();
            for (Worker& worker : workers) Look(worker);
            if (!stopping && jobs.stopRequested()) Stop();
            const bool late = stopping && Clock::now() > lastMoment;
            if (late) std::ranges::for_each(workers, [](Worker& worker) { Signal(worker, SIGKILL); });
        }
    }

  private:
    bool AnyRuns() const {
        return std::ranges::any_of(workers, [](const Worker& worker) { return worker.process > 0; });
    }

    static void Signal(Worker& worker, int number) {
        if (worker.process > 0) kill(worker.process, number);
    }

    void Start(Worker& worker) {
        int down[2];
        int up[2];
        if (pipe2(down, O_CLOEXEC) != 0) return;
        worker.jobs = End(down[1]);
        End from(down[0]);
        if (pipe2(up, O_CLOEXEC) != 0) return;
        worker.answers = End(up[0]);
        End to(up[1]);
        const pid_t process = fork();
        if (process == 0) {
            for (Worker& other : workers) {
                other.jobs = End();
                other.answers = End();
            }
            Work(from.Get(), to.Get());
            std::fflush(nullptr);
            _exit(0);
        }
        if (process < 0) return;
        worker.process = process;
        Send(worker);
    }

    void Work(int from, int to) const {
        uint64_t job = 0;
        while (ReadFully(from, &job, sizeof job)) {
            const std::string told = jobs.work(static_cast<size_t>(job));
            const uint64_t length = told.size();
            if (!WriteFully(to, &length, sizeof length) || !WriteFully(to, told.data(), told.size())) return;
        }
    }

    // Gives it the next job, or its end when there is none.
    void Send(Worker& worker) {
        worker.busy = next < count && !stopping;
        if (!worker.busy) {
            worker.jobs = End();
            return;
        }
        worker.job = next++;
        const uint64_t job = worker.job;
        WriteFully(worker.jobs.Get(), &job, sizeof job);
    }

    void Wait() const {
        constexpr int turn = 20;  // ms
        std::vector<pollfd> files;
        for (const Worker& worker : workers) {
            if (worker.process > 0) files.push_back({worker.answers.Get(), POLLIN, 0});
        }
        poll(files.data(), files.size(), turn);
    }

    void Look(Worker& worker) {
        if (worker.process <= 0) return;
        pollfd file = {worker.answers.Get(), POLLIN, 0};
        if (poll(&file, 1, 0) <= 0) return;
        uint64_t length = 0;
        std::string told;
        if (ReadFully(file.fd, &length, sizeof length)) {
            told.resize(static_cast<size_t>(length));
            if (ReadFully(file.fd, told.data(), told.size())) {
                worker.busy = false;
                if (!jobs.done(worker.job, told)) next = count;
                return Send(worker);
            }
        }
        Bury(worker);
    }

    // The process has closed its end.
    void Bury(Worker& worker) {
        int status = 0;
        while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) continue;
        const auto number = static_cast<unsigned long>(worker.process);
        worker.process = 0;
        if (!std::exchange(worker.busy, false)) return;
        jobs.broken(worker.job, number, WIFSIGNALED(status) ? WTERMSIG(status) : 0);
        if (next < count && !stopping) Start(worker);
    }

    void Stop() {
        constexpr std::chrono::milliseconds patience(700);
        stopping = true;
        lastMoment = Clock::now() + patience;
        for (Worker& worker : workers) Signal(worker, SIGTERM);
    }

    size_t count;
    const Jobs& jobs;
    std::vector<Worker> workers;
    size_t next = 0;
    bool stopping = false;
    Clock::time_point lastMoment;
};

}  // namespace

void RunJobs(size_t count, int processes, const Jobs& jobs) {
    Workers(count, std::min(count, static_cast<size_t>(processes)), jobs).Run();
}

}  // namespace vemrado::tools
