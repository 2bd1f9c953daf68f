#include "commands.h"

namespace vemrado::tools {

void AddCommands(Program& program) {
    AddInfoCommand(program);
    AddDumpCommand(program);
#if VEMRADO_DRAWING
    AddRenderCommand(program);
#endif
    AddSymbologyCommand(program);
    AddShapesCommand(program);
    AddGenerateCommand(program);
}

}  // namespace vemrado::tools
