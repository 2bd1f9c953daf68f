// vkm generate, for the build: the man page and the bash completion, from the option table that the program
// itself reads its command line with.

#include <memory>
#include <string>

#include "commands.h"
#include "manual.h"
#include "program.h"

namespace vemrado::tools {

void AddGenerateCommand(Program& program) {
    const auto what = std::make_shared<std::string>();
    CLI::App& command = program.AddHidden("generate", [&program, what](Environment& environment) {
        environment.output.Write(*what == "man" ? ManualPage(program) : BashCompletion(program));
        return exitDone;
    });
    command.add_option("WHAT", *what, "man or bash-completion")
        ->required()
        ->check(CLI::IsMember({"man", "bash-completion"}));
}

}  // namespace vemrado::tools
