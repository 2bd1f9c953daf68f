// Standard input as a file: it comes once, while layers are read more than once.

#pragma once

#include <string>

namespace vemrado::gdal {

inline constexpr const char* standardInputFile = "/vsistdin/";

// A temporary file with all of standard input, deleted with the object.
class SpooledInput {
  public:
    // A failure is reported to GDAL; the path is empty then.
    SpooledInput();
    SpooledInput(const SpooledInput&) = delete;
    SpooledInput& operator=(const SpooledInput&) = delete;
    ~SpooledInput();

    const std::string& Path() const { return path; }

  private:
    std::string path;
};

}  // namespace vemrado::gdal
