// The texts in three languages.

#pragma once

#include <string_view>

namespace vemrado::tools {

struct Translation {
    std::string_view english;
    std::string_view czech;
    std::string_view german;
};

// clang-format off
inline constexpr Translation translations[] = {
// The program
{R"(there is no command '{}'; the commands are {})",
 R"(příkaz '{}' neexistuje; příkazy jsou {})",
 R"(einen Befehl '{}' gibt es nicht; die Befehle sind {})"},
{R"(there is no command '{}'; did you mean '{}'?)",
 R"(příkaz '{}' neexistuje; neměli jste na mysli '{}'?)",
 R"(einen Befehl '{}' gibt es nicht; war '{}' gemeint?)"},
};
// clang-format on

}  // namespace vemrado::tools
