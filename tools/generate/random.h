// Random numbers that are the same on every machine: a counter-based mixer, so that anything in the country
// (a road crossing, a plot, a name) has its own stream of numbers, found from the seed and a few integers
// alone.

#pragma once

#include <cstddef>
#include <cstdint>

namespace generate {

// Finaliser of SplitMix64.
constexpr uint64_t Mix(uint64_t value) {
    value += 0x9E3779B97F4A7C15u;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
}

// What a stream of numbers is used for; keeps streams with equal integers apart.
enum class Subject : uint64_t {
    latticeNode = 1,
    latticeEdge,
    stream,
    town,
    district,
    powerLine,
    roadName,
    streets,
    parcels,
    records,
    plainLines,
};

class Random {
  public:
    explicit Random(uint64_t start) : state(start) {}
    Random(uint64_t seed, Subject subject, int64_t a = 0, int64_t b = 0)
        : state(Mix(Mix(Mix(seed ^ (static_cast<uint64_t>(subject) << 56)) + static_cast<uint64_t>(a)) +
                    static_cast<uint64_t>(b))) {}

    uint64_t Next() {
        state += 0x9E3779B97F4A7C15u;
        uint64_t value = state;
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
        return value ^ (value >> 31);
    }
    // At least 0, less than 1.
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    // 0 to limit - 1; limit at least 1.
    int Below(int limit) { return static_cast<int>((Next() >> 32) * static_cast<uint64_t>(limit) >> 32); }
    bool Chance(double probability) { return Unit() < probability; }

    template <typename Table>
    const auto& Pick(const Table& table) {
        return table[static_cast<std::size_t>(Below(static_cast<int>(table.size())))];
    }

  private:
    uint64_t state;
};

}  // namespace generate
