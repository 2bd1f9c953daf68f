#include <string>
#include <vector>

#include "completion_words.h"
#include "manual.h"

namespace vemrado::tools {
namespace {

// Names of all options of a command, as words.
std::string OptionWords(const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : NamesOf(*option)) {
            if (name.size() > 2 || option->get_lnames().empty()) words.push_back(name);
        }
    }
    return JoinedWords(words, " ");
}

// What completes the value of an option. The words of a list are completed one by one.
std::string ValueCompletion(const Program& program, const CLI::Option& option) {
    switch (KindOfValue(program, option)) {
        case ValueKind::choices: {
            const std::string words = JoinedWords(program.Choices(option), " ");
            if (option.get_delimiter() == '\0')
                return "COMPREPLY=($(compgen -W '" + words + "' -- \"$current\"))";
            return "_vkm_list '" + words + "'";
        }
        case ValueKind::directory:
            return "compopt -o filenames; COMPREPLY=($(compgen -d -- \"$current\"))";
        case ValueKind::file:
            return "compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\"))";
        default:
            return ":";
    }
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
        text += "        " + JoinedWords(NamesOf(*option), "|") + ") " + ValueCompletion(program, *option) +
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
           "_vkm_list() {\n"
           "  local before=''\n"
           "  case \"$current\" in *,*) before=\"${current%,*},\" ;; esac\n"
           "  COMPREPLY=($(compgen -P \"$before\" -W \"$1\" -- \"${current##*,}\"))\n"
           "  compopt -o nospace\n"
           "}\n"
           "_vkm() {\n"
           "  local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD-1]}\" "
           "options=''\n"
           "  COMPREPLY=()\n"
           "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "    COMPREPLY=($(compgen -W '" +
           JoinedWords(names, " ") +
           " help version --help --version' -- \"$current\"))\n"
           "    return\n"
           "  fi\n"
           "  # bash splits --option=value at the equals sign\n"
           "  if [ \"$current\" = '=' ]; then current=''; fi\n"
           "  if [ \"$previous\" = '=' ]; then previous=\"${COMP_WORDS[COMP_CWORD-2]}\"; fi\n"
           "  case \"${COMP_WORDS[1]}\" in\n" +
           cases + "    help) COMPREPLY=($(compgen -W '" + JoinedWords(names, " ") +
           "' -- \"$current\")); return ;;\n"
           "  esac\n"
           "  case \"$current\" in\n"
           "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$current\")) ;;\n"
           "    *) compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\")) ;;\n"
           "  esac\n"
           "}\n"
           "complete -F _vkm vkm\n";
}

}  // namespace vemrado::tools
