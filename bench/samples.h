// Repeated timings of one job and what to say of them. Processor time, so that other programs disturb little.

#pragma once

#include <algorithm>
#include <ctime>
#include <functional>
#include <vector>

class Samples {
  public:
    // Runs the job and keeps the seconds that it took.
    template <class Job>
    void Time(Job job) {
        const std::clock_t start = std::clock();
        job();
        seconds.push_back(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }

    double Minimum() const { return *std::min_element(seconds.begin(), seconds.end()); }
    double Median() const { return MedianOf(seconds); }
    // The median of the quotients of as many samples taken in turn.
    double MedianRatio(const Samples& reference) const {
        std::vector<double> ratios(seconds.size());
        std::transform(seconds.begin(), seconds.end(), reference.seconds.begin(), ratios.begin(),
                       std::divides());
        return MedianOf(ratios);
    }

  private:
    static double MedianOf(std::vector<double> values) {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }

    std::vector<double> seconds;
};
