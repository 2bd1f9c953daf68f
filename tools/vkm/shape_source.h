// The text source of a shape file. docs/symbology-format.md describes it with examples.

#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "shape_file.h"

namespace vemrado::tools {

// A source that cannot be read. what() is the reason; the line counts from 1.
class ShapeSourceError : public std::runtime_error {
  public:
    ShapeSourceError(size_t lineNumber, const std::string& reason)
        : std::runtime_error(reason), line(lineNumber) {}
    size_t Line() const { return line; }

  private:
    size_t line;
};

// Throws ShapeSourceError.
ShapeFile ReadShapeSource(std::string_view source);

// The source that gives this file; reading it again gives the same file.
std::string WriteShapeSource(const ShapeFile& file);

}  // namespace vemrado::tools
