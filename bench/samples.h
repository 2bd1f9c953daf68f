// Repeated timings of one job and what to say of them.

#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

class Samples {
  public:
    // Runs the job and keeps the seconds that it took.
    template <class Job>
    void Time(Job job) {
        const auto start = std::chrono::steady_clock::now();
        job();
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }

    double Minimum() const { return *std::min_element(seconds.begin(), seconds.end()); }
    double Median() const {
        std::vector<double> sorted = seconds;
        std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2),
                         sorted.end());
        return sorted[sorted.size() / 2];
    }

  private:
    std::vector<double> seconds;
};
