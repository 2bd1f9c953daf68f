#include <string>
#include <vector>

#include "client/system.h"
#include "commands.h"
#include "program.h"

int main(int argumentCount, char** arguments) {
    vemrado::tools::Program program;
    vemrado::tools::AddCommands(program);
    const std::vector<std::string> words = vemrado::client::ProgramArguments(argumentCount, arguments);
    std::vector<const char*> pointers;
    for (const std::string& word : words) pointers.push_back(word.c_str());
    return program.Run(static_cast<int>(pointers.size()), pointers.data());
}
