// The program's own description of its options in other forms.

#pragma once

#include <string>

namespace vemrado::tools {

class Program;

// vkm.1, in the man macros.
std::string ManualPage(Program& program);

// Completion files for three shells.
std::string BashCompletion(Program& program);
std::string ZshCompletion(Program& program);
std::string FishCompletion(Program& program);

}  // namespace vemrado::tools
