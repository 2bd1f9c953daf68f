#include "commands.h"

namespace vemrado::tools {

void AddCommands(Program& program) {
    AddInfoCommand(program);
    AddDumpCommand(program);
#if VEMRADO_DRAWING
    AddRenderCommand(program);
#endif
#if VEMRADO_CONVERTER
    AddConvertCommand(program);
#endif
    AddSymbologyCommand(program);
    AddShapesCommand(program);
    AddGenerateCommand(program);
}

}  // namespace vemrado::tools
