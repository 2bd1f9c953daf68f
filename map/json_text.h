// JSON in a string.

#pragma once

#include <string>
#include <string_view>

namespace vemrado::map {

// Appends a number so that reading it gives the same bits; what JSON has no number for becomes a string.
void AppendJsonReal(std::string& json, double value);

// Appends a UTF-8 text in quotes.
void AppendJsonText(std::string& json, std::string_view utf8);

}  // namespace vemrado::map
