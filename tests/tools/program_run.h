// Runs the command line as people do: arguments, standard input, and what comes back.

#pragma once

#include <string>
#include <vector>

namespace vemrado_test {

struct RunResult {
    int exitCode = -1;  // negative: ended by that signal
    std::string output;
    std::string errors;
};

struct RunSetting {
    std::string program{};          // in place of vkm
    std::string input{};            // given as standard input, which ends then
    std::string outputFile{};       // standard output goes to this file instead of the result
    std::string environment{};      // NAME=VALUE, in place of the variable
    bool closeOutputEarly = false;  // the reader of standard output goes away at once
    int interrupt = 0;  // a signal: standard input stays open; the program gets it once it has read it all
};

RunResult RunVkm(const std::vector<std::string>& arguments, const RunSetting& setting = {});

// A folder of files that ends with the test.
class TestFolder {
  public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    std::string Path(const std::string& name) const { return path + "/" + name; }
    // Writes a file and returns its path.
    std::string Add(const std::string& name, const std::string& bytes) const;

  private:
    std::string path;
};

std::string FileBytes(const std::string& path);

}  // namespace vemrado_test
