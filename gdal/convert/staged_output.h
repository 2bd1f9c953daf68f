// Output of several files that appears whole or not at all.

#pragma once

#include <string>

namespace vemrado::gdal {

// A folder beside the output in which it is made. What was not put in place is removed.
class StagedOutput {
  public:
    explicit StagedOutput(const std::string& output);
    StagedOutput(const StagedOutput&) = delete;
    StagedOutput& operator=(const StagedOutput&) = delete;
    ~StagedOutput();

    // Makes the folder; false with the system's reason when it cannot.
    bool Make(std::string& reason);
    // Where to make a file that shall stand beside the output under the name.
    std::string PathOf(const std::string& name) const;
    // Moves every file of the folder to its place, over files of the same names. False with the reason when
    // one cannot be moved.
    bool PutInPlace(std::string& reason);

  private:
    void RemoveForsaken() const;

    std::string target;  // folder of the output
    std::string folder;
};

}  // namespace vemrado::gdal
