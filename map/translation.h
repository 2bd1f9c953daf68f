// A text in the three languages that people read, and the tables of those that map/ and the host's libraries
// say. English stands in the code and is the key.

#pragma once

#include <algorithm>
#include <span>
#include <string_view>

namespace vemrado::map {

struct Translation {
    std::string_view english;
    std::string_view czech;
    std::string_view german;
};

// The numbers of GetZrvCountry.
enum class Language { czech = 0, english = 1, german = 2 };

using TranslationTable = std::span<const Translation>;

constexpr bool IsComplete(TranslationTable table) {
    return std::none_of(table.begin(), table.end(), [](const Translation& row) {
        return row.english.empty() || row.czech.empty() || row.german.empty();
    });
}

constexpr bool IsIn(TranslationTable table, std::string_view english) {
    return std::any_of(table.begin(), table.end(),
                       [&](const Translation& row) { return row.english == english; });
}

}  // namespace vemrado::map
