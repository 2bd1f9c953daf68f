#include "help_format.h"

#include "translations.h"

namespace vemrado::tools {

std::string ValueName(const CLI::Option& option) {
    if (option.get_items_expected_max() == 0) return {};
    const std::string name = option.get_type_name();
    return name.substr(0, name.find(':'));
}

std::string OptionDescription(const CLI::Option& option) {
    const std::string& preset = option.get_default_str();
    std::string text = TranslatedText(option.get_description());
    if (!preset.empty()) text += " (" + Filled("default: {}", {preset}) + ")";
    return text;
}

HelpFormat::HelpFormat() {
    constexpr size_t descriptionColumn = 28;
    column_width(descriptionColumn);
    label("SUBCOMMAND", Translated("COMMAND"));
    label("Positionals", Translated("Arguments"));
    for (const char* word : {"Usage", "OPTIONS"}) label(word, TranslatedText(word));
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
    if (option->get_positional()) return {};
    const std::string name = ValueName(*option);
    return name.empty() ? name : ' ' + name;
}

std::string HelpFormat::make_group(std::string group, bool positionals,
                                   std::vector<const CLI::Option*> options) const {
    return Formatter::make_group(TranslatedText(group), positionals, std::move(options));
}

std::string HelpFormat::make_option_desc(const CLI::Option* option) const {
    return OptionDescription(*option);
}

}  // namespace vemrado::tools
