// Work on many files shared among processes.

#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace vemrado::tools {

struct Jobs {
    // Does job i and returns what to tell of it; called in a process of its own.
    std::function<std::string(size_t)> work;
    // Called in this process with what was told of job i. False: no further job is begun.
    std::function<bool(size_t i, const std::string& told)> done;
    // Called in this process when the one of that number was ended by a signal in job i.
    std::function<void(size_t i, unsigned long process, int signal)> broken;
    // Asked in this process now and then; true ends everything within a second.
    std::function<bool()> stopRequested;
};

// Does every job below count, each once, in up to so many processes at a time; one that breaks is replaced.
void RunJobs(size_t count, int processes, const Jobs& jobs);

}  // namespace vemrado::tools
