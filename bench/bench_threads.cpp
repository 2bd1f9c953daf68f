// Measures how much two importers on two threads read in the time of one.
//
//   bench_threads [--repeat N] FILE
//
// The two take turns with the one, so that each pair meets the same machine. Other programs take a core away
// from two threads sooner than from one, so the best pair is what the importers themselves are worth. One
// line of JSON: seconds of that pair, its speed-up (2: nothing is lost) and the median of all pairs.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "vemrado/vkm_interface.h"

namespace {

double Import(const char* path) {
    CVKMInterface* vkm = CreateVKMInterface();
    double sum = 0;
    if (vkm != nullptr && vkm->Open(path, 0, "", 1, 0.0, CVKMInterface::flgSymbolsNone) != 0) {
        double point[3];
        while (const int kind = vkm->ReadNext()) {
            for (int i = 0; kind == 1 && i < vkm->GetElementCount(); ++i) {
                vkm->GetElementPoint(i, point);
                sum += point[0] + point[1] + vkm->GetElementType(i);
            }
        }
    }
    DestroyVKMInterface(vkm);
    return sum;
}

// Wall time in seconds of one import on each of the threads.
double Seconds(const char* path, int threads, double expected) {
    std::vector<double> sums(static_cast<size_t>(threads));
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> running;
    for (double& sum : sums) running.emplace_back([path, &sum] { sum = Import(path); });
    for (std::thread& thread : running) thread.join();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    for (const double sum : sums) {
        if (sum != expected) throw std::runtime_error("the threads did not read the same");
    }
    return taken.count();
}

}  // namespace

int main(int argc, char** argv) {
    int repetitions = 15;
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--repeat" && i + 1 < argc) {
            repetitions = std::max(1, std::atoi(argv[++i]));
        } else {
            path = argv[i];
        }
    }
    if (path == nullptr) {
        std::fputs("usage: bench_threads [--repeat N] FILE\n", stderr);
        return 2;
    }
    const double expected = Import(path);  // brings the file into the page cache
    struct Pair {
        double one, two;
        double SpeedUp() const { return 2 * one / two; }
    };
    std::vector<Pair> pairs;
    try {
        for (int i = 0; i < repetitions; ++i)
            pairs.push_back({Seconds(path, 1, expected), Seconds(path, 2, expected)});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_threads: %s: %s\n", path, failure.what());
        return 1;
    }
    std::sort(pairs.begin(), pairs.end(),
              [](const Pair& a, const Pair& b) { return a.SpeedUp() < b.SpeedUp(); });
    const Pair& best = pairs.back();
    std::printf("{\"one\": %.6f, \"two\": %.6f, \"speedup\": %.3f, \"median_speedup\": %.3f}\n", best.one,
                best.two, best.SpeedUp(), pairs[pairs.size() / 2].SpeedUp());
}
