// What is said of a word that is no command.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vemrado::tools {

// The name that a mistyped word most likely means; empty when none is near.
std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names);

// One sentence that names the word, with the nearest name where there is one.
std::string UnknownCommandMessage(const std::string& word, const std::vector<std::string_view>& names);

}  // namespace vemrado::tools
