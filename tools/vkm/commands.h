// Every command of the program. A command lives in a file of its own, NAME_command.cpp, and is added to the
// table in commands.cpp, whose order is the order of help, man page and completion.

#pragma once

namespace vemrado::tools {

class Program;

void AddCommands(Program& program);

void AddInfoCommand(Program& program);
void AddDumpCommand(Program& program);
void AddCheckCommand(Program& program);
void AddDiffCommand(Program& program);
void AddRenderCommand(Program& program);
void AddViewCommand(Program& program);
void AddConvertCommand(Program& program);
void AddIndexCommand(Program& program);
void AddParcelsCommand(Program& program);
void AddSymbologyCommand(Program& program);
void AddShapesCommand(Program& program);
void AddGenerateCommand(Program& program);

}  // namespace vemrado::tools
