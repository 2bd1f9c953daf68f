#include "commands.h"

namespace vemrado::tools {

void AddCommands(Program& program) {
    AddInfoCommand(program);
    AddDumpCommand(program);
    AddCheckCommand(program);
    AddDiffCommand(program);
    AddRenderCommand(program);
    AddViewCommand(program);
#if VEMRADO_CONVERTER
    AddConvertCommand(program);
    AddIndexCommand(program);
#else
    program.LeaveOut(
        "convert",
        "convert is not part of this build, which has no GDAL: "
        "the packages vemrado and vemrado-gdal have it, or a build with -DVEMRADO_BUILD_GDAL=ON");
#endif
    AddParcelsCommand(program);
    AddSymbologyCommand(program);
    AddShapesCommand(program);
    AddGenerateCommand(program);
}

}  // namespace vemrado::tools
