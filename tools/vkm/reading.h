// Reading one file from its first element to its last, and what is said when that does not go well.

#pragma once

#include <functional>
#include <string>

#include "map/importer.h"
#include "program.h"

namespace vemrado::tools {

enum class ReadOutcome {
    complete,    // with its closing record
    incomplete,  // the file ended without its closing record
    notOpened,   // it cannot be opened or is no map
    failed,      // reading failed in the middle
    stopped,     // the user asked to stop
};

struct ReadingEnd {
    ReadOutcome outcome;
    std::string problem;  // UTF-8; empty when complete
};

// Opens the file and hands each element to take, which looks at importer.Line() or importer.Text(). What is
// not complete has been said as an error when this returns; output is flushed before that. The consequence is
// what an end in the middle of the file means for the output.
ReadingEnd ReadElements(map::Importer& importer, const map::OpenOptions& options, Environment& environment,
                        const std::function<void(map::ElementKind)>& take,
                        Message consequence = "the output is partial");

}  // namespace vemrado::tools
