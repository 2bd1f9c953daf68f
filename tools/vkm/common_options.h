// Options that several commands offer in the same words.

#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "client/text_encoding.h"

namespace vemrado::tools {

class Program;

// The one input file, FILE.
void AddFileArgument(CLI::App& command, std::string& file);

// --encoding: the encoding of the file's texts.
void AddEncodingOption(Program& program, CLI::App& command, client::Encoding& encoding);

// --orientation: the axis orientation by name or number; the code's initial value is the default.
void AddOrientationOption(Program& program, CLI::App& command, int& code);

}  // namespace vemrado::tools
