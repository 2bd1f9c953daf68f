// The eight axis orientations of CVKMInterface::SetAxisOrientation by the names that people type.

#pragma once

#include <array>
#include <optional>
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

// The code of a name, which may stand in parentheses and hold blanks, or of a code written in decimal digits;
// none for anything else.
std::optional<int> FindAxisOrientation(std::string_view text);

// The name of one of the eight codes; empty for other codes.
std::string_view AxisOrientationName(int code);

}  // namespace vemrado::client
