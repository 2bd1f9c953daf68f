// Texts without accents and case, for finding.

#pragma once

#include <string>
#include <string_view>

namespace vemrado::web {

// Small letters without accents; the letters of Latin-1 and Latin Extended-A are known. UTF-8.
void AppendFolded(std::string_view utf8, std::string& folded);

}  // namespace vemrado::web
