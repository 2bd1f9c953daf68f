// When two places or elements of two states are the same.

#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "map/geometry.h"

namespace vemrado::map {

// A place to a hundredth of a millimetre: sums with a sheet's origin are rounded otherwise than numbers that
// were written whole.
struct PlaceKey {
    int64_t x = 0;
    int64_t y = 0;
    bool operator==(const PlaceKey&) const = default;
    auto operator<=>(const PlaceKey&) const = default;
};

inline int64_t KeyOf(double coordinate) {
    constexpr double perMetre = 1e5;
    constexpr double farthest = 9e18;
    const double scaled = coordinate * perMetre;
    if (!(scaled > -farthest && scaled < farthest)) {  // as its bits, so that equals stay equal
        int64_t bits;
        std::memcpy(&bits, &coordinate, sizeof bits);
        return bits;
    }
    return static_cast<int64_t>(scaled + (scaled < 0 ? -0.5 : 0.5));
}

inline PlaceKey KeyOf(Point point) {
    return {KeyOf(point.x), KeyOf(point.y)};
}

class Hash {
  public:
    Hash& Add(uint64_t value) {
        state = (state ^ value) * 0x9E3779B97F4A7C15u;
        state ^= state >> 32;
        return *this;
    }
    Hash& Add(PlaceKey key) { return Add(static_cast<uint64_t>(key.x)).Add(static_cast<uint64_t>(key.y)); }
    Hash& Add(std::string_view text) {
        for (const char c : text) Add(static_cast<uint64_t>(static_cast<unsigned char>(c)));
        return *this;
    }
    uint64_t Value() const { return state; }

  private:
    uint64_t state = 0x243F6A8885A308D3u;
};

}  // namespace vemrado::map
