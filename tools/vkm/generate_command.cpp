// vkm generate, for the build: the man page and the completion files, from the option table that the program
// itself reads its command line with.

#include <map>
#include <memory>
#include <set>
#include <string>

#include "commands.h"
#include "manual.h"
#include "program.h"

namespace vemrado::tools {

void AddGenerateCommand(Program& program) {
    using Maker = std::string (*)(Program&);
    static const std::map<std::string, Maker> makers = {{"man", ManualPage},
                                                        {"bash-completion", BashCompletion},
                                                        {"zsh-completion", ZshCompletion},
                                                        {"fish-completion", FishCompletion}};
    const auto what = std::make_shared<std::string>();
    CLI::App& command = program.AddHidden("generate", [&program, what](Environment& environment) {
        environment.output.Write(makers.at(*what)(program));
        return exitDone;
    });
    std::set<std::string> names;
    for (const auto& [name, make] : makers) names.insert(name);
    command.add_option("WHAT", *what, "What to write")->required()->check(CLI::IsMember(names));
}

}  // namespace vemrado::tools
