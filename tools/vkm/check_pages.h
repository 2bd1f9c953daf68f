// The pages of docs/check.md, one for each rule of vkm check.

#pragma once

#include <string>
#include <string_view>

namespace vemrado::tools {

// The page of a rule: its heading and what follows up to the next.
std::string PageOfRule(std::string_view rule);

}  // namespace vemrado::tools
