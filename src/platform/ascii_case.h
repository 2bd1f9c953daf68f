// Comparison without regard to case, for names that are ASCII where it matters: only A to Z and a to z are
// the same.

#pragma once

#include <algorithm>
#include <string_view>

namespace vemrado::platform {

constexpr char LowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

constexpr bool SameWithoutCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

}  // namespace vemrado::platform
