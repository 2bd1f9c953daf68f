// A map file as people name it, before the module opens it: what is no map is told, standard input and pipes
// are looked at without loss, and a byte order mark is passed over.

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vemrado::client {

// A file that is no map. what() is one sentence of UTF-8 that names the file and what it looks like.
class ForeignFile : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct InputFile {
    std::string name;          // what the module's next open takes
    std::string start;         // its first bytes, as far as they were looked at
    bool markSkipped = false;  // a byte order mark stood before the first record
};

// Looks at the start of a file, or of standard input (standardInputName). Throws ForeignFile; a file that
// cannot be read is left to the module, which says why. What has been read of a stream, and a file with a
// mark, is handed to the module's next open of the name by a file provider. A stream can be looked at again
// before that. More than what tells a map may be looked at.
InputFile LookAtInput(const std::string& name, size_t wanted = 0);

// The sentence that tells of a skipped mark.
std::string SkippedMarkMessage(const std::string& shownName);

}  // namespace vemrado::client
