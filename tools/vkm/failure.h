// How a command ends.

#pragma once

#include <stdexcept>
#include <string>

namespace vemrado::tools {

enum ExitCode : int {
    exitDone = 0,
    exitInput = 1,     // an input could not be used or is incomplete
    exitUsage = 2,     // the command line makes no sense
    exitInternal = 3,  // anything else, such as a full disk
    exitNotMade = 4,   // of convert: some inputs were not made into an output
};

// Ends a command. what() is one clear sentence of UTF-8 that names file and reason.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode exitCode, const std::string& message) : std::runtime_error(message), code(exitCode) {}
    ExitCode Code() const { return code; }

  private:
    ExitCode code;
};

// The reader of standard output has gone away. Nobody wants the rest: the program ends quietly.
struct ClosedPipe {};

}  // namespace vemrado::tools
