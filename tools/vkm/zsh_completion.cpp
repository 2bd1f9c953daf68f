#include <string>

#include "completion_words.h"
#include "manual.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

// For a text in single quotes inside a specification, whose own brackets and colons are escaped.
std::string ZshQuoted(std::string_view text) {
    std::string quoted;
    for (const char letter : text) {
        if (letter == '\'') {
            quoted += "'\\''";
        } else {
            if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') quoted += '\\';
            quoted += letter;
        }
    }
    return quoted;
}

// ":NAME:ACTION" of _arguments.
std::string ValueSpecification(const Program& program, const CLI::Option& option, const std::string& name) {
    switch (KindOfValue(program, option)) {
        case ValueKind::none:
            return {};
        case ValueKind::choices: {
            const std::string words = JoinedWords(program.Choices(option), " ");
            const bool list = option.get_delimiter() != '\0';
            return ":" + name + (list ? ":_sequence compadd - " + words : ":(" + words + ")");
        }
        case ValueKind::directory:
            return ":" + name + ":_files -/";
        case ValueKind::file:
            return ":" + name + ":_files";
        default:
            return ":" + name + ": ";
    }
}

std::string Specifications(const Program& program, const CLI::App& command) {
    std::string text;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            const bool many = option->get_items_expected_max() > 1;
            text += " \\\n        '" + std::string(many ? "*" : "") +
                    ValueSpecification(program, *option, ZshQuoted(option->get_name(true))) + "'";
            continue;
        }
        const std::vector<std::string> names = NamesOf(*option);
        for (const std::string& name : names) {
            text += " \\\n        '(" + JoinedWords(names, " ") + ")" + name + "[" +
                    ZshQuoted(MenuText(*option)) + "]" +
                    ValueSpecification(program, *option, ZshQuoted(ValueName(*option))) + "'";
        }
    }
    return text;
}

}  // namespace

std::string ZshCompletion(Program& program) {
    std::string menu;
    std::string cases;
    for (const Command& command : program.Commands()) {
        const std::string name(command.text.name);
        menu += "        '" + name + ":" + ZshQuoted(Translated(command.text.summary)) + "'\n";
        cases += "      " + name + ")\n        _arguments" + Specifications(program, *command.options) +
                 "\n        ;;\n";
    }
    return "#compdef vkm\n# zsh completion for vkm\n"
           "_vkm() {\n"
           "  local -a commands\n"
           "  local state line\n"
           "  commands=(\n" +
           menu +
           "  )\n"
           "  _arguments -C '1: :->command' '*:: :->rest' '(- *)--help' '(- *)--version'\n"
           "  case $state in\n"
           "  command) _describe command commands ;;\n"
           "  rest)\n"
           "    case $line[1] in\n" +
           cases +
           "      help) _describe command commands ;;\n"
           "    esac\n"
           "    ;;\n"
           "  esac\n"
           "}\n"
           "_vkm \"$@\"\n";
}

}  // namespace vemrado::tools
