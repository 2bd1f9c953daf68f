// The eight axis orientations of CVKMInterface::SetAxisOrientation by the names that people type.

#pragma once

#include <array>
#include <string_view>

namespace vemrado::client {

struct AxisOrientation {
    std::string_view name;  // what a point (x, y) becomes
    int code;
};

inline constexpr std::array<AxisOrientation, 8> axisOrientations = {{
    {"x,y", 1},
    {"x,-y", 2},
    {"-x,y", 4},
    {"-x,-y", 8},
    {"y,x", 16},
    {"-y,x", 32},
    {"y,-x", 64},
    {"-y,-x", 128},
}};

}  // namespace vemrado::client
