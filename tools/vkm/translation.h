// A text of the program in its three languages.

#pragma once

#include <string_view>

namespace vemrado::tools {

struct Translation {
    std::string_view english;
    std::string_view czech;
    std::string_view german;
};

}  // namespace vemrado::tools
