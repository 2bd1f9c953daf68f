// JSON text written straight into standard output's buffer, for listings of hundreds of megabytes.

#pragma once

#include <algorithm>
#include <charconv>
#include <string_view>

#include "standard_output.h"

namespace vemrado::tools {

// A real needs at most so many characters.
inline constexpr size_t numberRoom = 32;

// Writes a real so that reading it gives the same bits, in few digits: -0.0 keeps its sign, and what JSON has
// no number for becomes one of the strings "Infinity", "-Infinity" and "NaN". Returns the end.
char* FormatReal(double value, char* to);

class JsonWriter {
  public:
    explicit JsonWriter(StandardOutput& standardOutput) : output(standardOutput) {}

    // JSON text as it stands: names, brackets and commas; at most StandardOutput::largestRoom characters.
    void Raw(std::string_view text) {
        char* room = output.Room(text.size());
        output.Use(std::copy_n(text.data(), text.size(), room));
    }
    void Real(double value) { output.Use(FormatReal(value, output.Room(numberRoom))); }
    void Integer(int value) {
        char* room = output.Room(numberRoom);
        output.Use(std::to_chars(room, room + numberRoom, value).ptr);
    }
    // A UTF-8 text in quotes, with what JSON does not take as it is escaped.
    void String(std::string_view utf8);

  private:
    StandardOutput& output;
};

}  // namespace vemrado::tools
