// Output files that appear whole or not at all.

#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vemrado::client {

// A file that could not be written. what() is one line of UTF-8 that names file and reason.
class OutputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Writes beside the file and puts the whole in its place when it is complete; a file of that name keeps its
// old content until then. What is not a regular file, such as a device or a named pipe, is written directly.
class AtomicOutput {
  public:
    // Throws OutputError, as Write and Commit do.
    explicit AtomicOutput(const std::string& path);
    AtomicOutput(const AtomicOutput&) = delete;
    AtomicOutput& operator=(const AtomicOutput&) = delete;
    // Removes what was not committed.
    ~AtomicOutput();

    void Write(std::string_view bytes);

    // Puts the file in place. Nothing can be written afterwards.
    void Commit();

    // Removes what is not in place, for a process that is about to end while another thread writes.
    void Abandon() const;

  private:
    void RemoveTemporary() const;
    [[noreturn]] void Fail(int error);

    std::string shownPath;
    std::string target;
    std::string temporary;  // empty when the target is written directly
    std::FILE* file;
};

}  // namespace vemrado::client
