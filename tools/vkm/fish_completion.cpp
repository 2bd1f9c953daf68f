#include <string>

#include "completion_words.h"
#include "manual.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

std::string FishQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char letter : text) {
        if (letter == '\'' || letter == '\\') quoted += '\\';
        quoted += letter;
    }
    return quoted + "'";
}

std::string ValuePart(const Program& program, const CLI::Option& option) {
    switch (KindOfValue(program, option)) {
        case ValueKind::none:
            return {};
        case ValueKind::choices: {
            const std::string words = JoinedWords(program.Choices(option), " ");
            const bool list = option.get_delimiter() != '\0';
            return " -x -a " + FishQuoted(list ? "(__fish_append , " + words + ")" : words);
        }
        case ValueKind::directory:
            return " -x -a '(__fish_complete_directories)'";
        case ValueKind::file:
            return " -r -F";
        default:
            return " -x";
    }
}

std::string Lines(const Program& program, const Command& command) {
    std::string text;
    const std::string begin =
        "complete -c vkm -n '__fish_seen_subcommand_from " + std::string(command.text.name) + "'";
    for (const CLI::Option* option : command.options->get_options()) {
        if (option->get_positional()) {
            if (KindOfValue(program, *option) == ValueKind::choices)
                text += begin + " -a " + FishQuoted(JoinedWords(program.Choices(*option), " ")) + '\n';
            continue;
        }
        text += begin;
        for (const std::string& name : option->get_snames()) text += " -s " + name;
        for (const std::string& name : option->get_lnames()) text += " -l " + name;
        text += ValuePart(program, *option) + " -d " + FishQuoted(MenuText(*option)) + '\n';
    }
    return text;
}

}  // namespace

std::string FishCompletion(Program& program) {
    std::string text = "# fish completion for vkm\n";
    for (const Command& command : program.Commands()) {
        text += "complete -c vkm -f -n __fish_use_subcommand -a " + std::string(command.text.name) + " -d " +
                FishQuoted(Translated(command.text.summary)) + '\n';
    }
    text +=
        "complete -c vkm -n __fish_use_subcommand -s h -l help\n"
        "complete -c vkm -n __fish_use_subcommand -s V -l version\n";
    for (const Command& command : program.Commands()) text += Lines(program, command);
    return text;
}

}  // namespace vemrado::tools
