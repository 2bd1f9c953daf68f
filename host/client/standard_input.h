// Standard input by the name that people give it.

#pragma once

#include <string_view>

namespace vemrado::client {

// What people write in place of a file name. A file of this name is reached as ./-
inline constexpr const char* standardInputName = "-";

// The name by which the module knows standard input, in its messages too.
inline constexpr const char* standardInputLabel = "standard input";

// The name to show for a file name that people gave.
inline const char* ShownName(const char* fileName) {
    return std::string_view(fileName) == standardInputName ? standardInputLabel : fileName;
}

}  // namespace vemrado::client
