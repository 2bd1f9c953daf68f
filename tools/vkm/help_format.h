// The form of --help.

#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace vemrado::tools {

// The word for an option's value, such as NAME, without the checks that CLI11 adds to it; empty when it has
// none.
std::string ValueName(const CLI::Option& option);

// What an option does, with its default.
std::string OptionDescription(const CLI::Option& option);

class HelpFormat : public CLI::Formatter {
  public:
    HelpFormat();
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_group(std::string group, bool positionals,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace vemrado::tools
