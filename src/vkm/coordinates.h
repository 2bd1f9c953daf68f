// Axis orientation: how a point of the file is turned to the host's axes.

#pragma once

#include <cstdint>

namespace vemrado {

// How one orientation code makes a point (x, y) the host's point.
struct AxisOrientation {
    uint32_t code;
    bool exchange;  // x and y change places first
    bool negateX;
    bool negateY;
};

inline constexpr AxisOrientation axisOrientations[] = {
    {2, false, false, true}, {4, false, true, false}, {8, false, true, true},  {16, true, false, false},
    {32, true, true, false}, {64, true, false, true}, {128, true, true, true},
};

// Any code that is not in the table, 1 among them, leaves the point unchanged.
inline void ApplyAxisOrientation(double& x, double& y, uint32_t code) {
    if (code == 1) return;
    for (const AxisOrientation& orientation : axisOrientations) {
        if (orientation.code != code) continue;
        if (orientation.exchange) {
            const double first = x;
            x = y;
            y = first;
        }
        if (orientation.negateX) x = -x;
        if (orientation.negateY) y = -y;
        return;
    }
}

}  // namespace vemrado
