#include "commands.h"

namespace vemrado::tools {

void AddCommands(Program& program) {
    AddInfoCommand(program);
    AddDumpCommand(program);
    AddGenerateCommand(program);
}

}  // namespace vemrado::tools
