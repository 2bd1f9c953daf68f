// What the completion files of all shells have in common.

#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "help_format.h"
#include "program.h"

namespace vemrado::tools {

// -o and --output.
inline std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

inline std::string JoinedWords(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) text.append(text.empty() ? "" : separator).append(word);
    return text;
}

enum class ValueKind { none, choices, directory, file, other };

// What the value of an option is: completed by its choices, by names of directories or files, or by nothing.
inline ValueKind KindOfValue(const Program& program, const CLI::Option& option) {
    if (option.get_items_expected_max() == 0) return ValueKind::none;
    if (!program.Choices(option).empty()) return ValueKind::choices;
    const std::string name = ValueName(option);
    if (name == "DIR") return ValueKind::directory;
    return option.get_positional() || name == "FILE" || name == "OUT" ? ValueKind::file : ValueKind::other;
}

// The first line of what an option does, in one line for a menu.
inline std::string MenuText(const CLI::Option& option) {
    const std::string text = OptionDescription(option);
    return text.substr(0, text.find('\n'));
}

}  // namespace vemrado::tools
