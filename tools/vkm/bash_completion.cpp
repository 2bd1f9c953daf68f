#include <string>
#include <vector>

#include "help_format.h"
#include "manual.h"
#include "program.h"

namespace vemrado::tools {
namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

std::string Joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) text.append(text.empty() ? "" : separator).append(word);
    return text;
}

// Names of all options of a command, as words.
std::string OptionWords(const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : NamesOf(*option)) {
            if (name.size() > 2 || option->get_lnames().empty()) words.push_back(name);
        }
    }
    return Joined(words, " ");
}

// What completes the value of an option: its choices, directories or files.
std::string ValueCompletion(const Program& program, const CLI::Option& option) {
    const std::vector<std::string>& choices = program.Choices(option);
    if (!choices.empty()) return "COMPREPLY=($(compgen -W '" + Joined(choices, " ") + "' -- \"$current\"))";
    if (ValueName(option) == "DIR") return "compopt -o filenames; COMPREPLY=($(compgen -d -- \"$current\"))";
    return "compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\"))";
}

// What completes arguments by their place, such as the action of a command with several.
std::string ArgumentChoices(const Program& program, const CLI::App& command) {
    std::string text;
    int place = 2;
    for (const CLI::Option* option : command.get_options()) {
        if (!option->get_positional()) continue;
        if (!program.Choices(*option).empty()) {
            text += "      if [ \"$COMP_CWORD\" -eq " + std::to_string(place) +
                    " ] && [[ \"$current\" != -* ]]; then " + ValueCompletion(program, *option) +
                    "; return; fi\n";
        }
        ++place;
    }
    return text;
}

std::string CommandCase(const Program& program, const Command& command) {
    std::string text = "    " + std::string(command.text.name) + ")\n      case \"$previous\" in\n";
    for (const CLI::Option* option : command.options->get_options()) {
        if (option->get_positional() || option->get_items_expected_max() == 0) continue;
        text += "        " + Joined(NamesOf(*option), "|") + ") " + ValueCompletion(program, *option) +
                "; return ;;\n";
    }
    text += "      esac\n" + ArgumentChoices(program, *command.options);
    return text + "      options='" + OptionWords(*command.options) + "' ;;\n";
}

}  // namespace

std::string BashCompletion(Program& program) {
    std::vector<std::string> names;
    std::string cases;
    for (const Command& command : program.Commands()) {
        names.emplace_back(command.text.name);
        cases += CommandCase(program, command);
    }
    return "# bash completion for vkm\n"
           "_vkm() {\n"
           "  local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD-1]}\" "
           "options=''\n"
           "  COMPREPLY=()\n"
           "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "    COMPREPLY=($(compgen -W '" +
           Joined(names, " ") +
           " --help --version' -- \"$current\"))\n"
           "    return\n"
           "  fi\n"
           "  # bash splits --option=value at the equals sign\n"
           "  if [ \"$current\" = '=' ]; then current=''; fi\n"
           "  if [ \"$previous\" = '=' ]; then previous=\"${COMP_WORDS[COMP_CWORD-2]}\"; fi\n"
           "  case \"${COMP_WORDS[1]}\" in\n" +
           cases +
           "  esac\n"
           "  case \"$current\" in\n"
           "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$current\")) ;;\n"
           "    *) compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\")) ;;\n"
           "  esac\n"
           "}\n"
           "complete -F _vkm vkm\n";
}

}  // namespace vemrado::tools
