#include "commands.h"
#include "program.h"

int main(int argumentCount, char** arguments) {
    vemrado::tools::Program program;
    vemrado::tools::AddCommands(program);
    return program.Run(argumentCount, arguments);
}
