// The program's own description of its options in other forms.

#pragma once

#include <string>

namespace vemrado::tools {

class Program;

// vkm.1, in the man macros.
std::string ManualPage(Program& program);

// A completion file for bash.
std::string BashCompletion(Program& program);

}  // namespace vemrado::tools
