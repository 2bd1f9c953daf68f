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

// Any code that is not in the table, 1 among them, leaves the point unchanged.
inline void ApplyAxisOrientation(double& x, double& y, uint32_t code) {
    if (code == 1) return;
    for (const AxisTurn& turn : axisTurns) {
        if (turn.code != code) continue;
        if (turn.exchange) {
            const double first = x;
            x = y;
            y = first;
        }
        if (turn.negateX) x = -x;
        if (turn.negateY) y = -y;
        return;
    }
}

}  // namespace vemrado
