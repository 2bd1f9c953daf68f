// Axis turn: how a point of the file is turned to the host's axes.

#pragma once

#include <cstdint>

namespace vemrado {

// How one turn code makes a point (x, y) the host's point.
struct AxisTurn {
    uint32_t code;
    bool exchange;  // x and y change places first
    bool negateX;
    bool negateY;
};

inline constexpr AxisTurn axisTurns[] = {
    {2, false, false, true}, {4, false, true, false}, {8, false, true, true},  {16, true, false, false},
    {32, true, true, false}, {64, true, false, true}, {128, true, true, true},
};

// The codes, which are single bits, that have a member set; with none named all of them.
constexpr uint32_t CodesWith(bool AxisTurn::*member = nullptr) {
    uint32_t codes = 0;
    for (const AxisTurn& turn : axisTurns)
        if (member == nullptr || turn.*member) codes |= turn.code;
    return codes;
}

// Any code that is not in the table, 1 among them, leaves the point unchanged.
inline void ApplyAxisOrientation(double& x, double& y, uint32_t code) {
    if ((code & CodesWith()) == 0 || (code & (code - 1)) != 0) return;
    if ((code & CodesWith(&AxisTurn::exchange)) != 0) {
        const double first = x;
        x = y;
        y = first;
    }
    if ((code & CodesWith(&AxisTurn::negateX)) != 0) x = -x;
    if ((code & CodesWith(&AxisTurn::negateY)) != 0) y = -y;
}

}  // namespace vemrado
