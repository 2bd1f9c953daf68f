#include "commands.h"

namespace vemrado::tools {

void AddCommands(Program& program) {
    AddInfoCommand(program);
    AddDumpCommand(program);
    AddRenderCommand(program);
#if VEMRADO_CONVERTER
    AddConvertCommand(program);
#endif
    AddSymbologyCommand(program);
    AddShapesCommand(program);
    AddGenerateCommand(program);
}

}  // namespace vemrado::tools
