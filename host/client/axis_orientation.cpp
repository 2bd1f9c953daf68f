#include "client/axis_orientation.h"

#include <string>

namespace vemrado::client {

std::optional<int> FindAxisOrientation(std::string_view text) {
    std::string name;
    for (const char letter : text) {
        if (letter != ' ' && letter != '(' && letter != ')') name += letter;
    }
    for (const AxisOrientation& orientation : axisOrientations) {
        if (name == orientation.name || name == std::to_string(orientation.code)) return orientation.code;
    }
    return std::nullopt;
}

std::string_view AxisOrientationName(int code) {
    for (const AxisOrientation& orientation : axisOrientations) {
        if (orientation.code == code) return orientation.name;
    }
    return {};
}

}  // namespace vemrado::client
