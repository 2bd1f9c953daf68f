// Work on many files shared among processes.

#pragma once

#include <cstddef>
#include <functional>

namespace vemrado::tools {

struct Jobs {
    // Does job i and returns an exit code; called in a process of its own.
    std::function<int(size_t)> work;
    // Called in this process now and then with the number of jobs that are done.
    std::function<void(size_t)> progress;
    // Called in this process when the one of that number was ended by a signal in job i; returns an exit
    // code.
    std::function<int(size_t i, unsigned long process, int signal)> broken;
};

// Does every job below count, each once, in up to so many processes at a time; one that breaks is replaced.
// Returns the highest exit code.
int RunJobs(size_t count, int processes, const Jobs& jobs);

}  // namespace vemrado::tools
