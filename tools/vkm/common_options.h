// Options that several commands offer in the same words.

#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "client/text_encoding.h"

namespace vemrado::tools {

class Environment;
class Program;

// Refuses what is no number from 0 on.
CLI::Validator NoNegativeNumber();

// Refuses what leads to no directory, by the names that the system's own functions take.
CLI::Validator ExistingDirectory();

// The one input file, FILE.
void AddFileArgument(CLI::App& command, std::string& file);

// Throws Failure when an output would take the place of the input it is made from.
void RefuseInputAsOutput(const std::string& input, const std::string& output);

// --tolerance: metres by which a text that is compared may have moved.
CLI::Option* AddToleranceOption(CLI::App& command, double& tolerance);

struct EncodingChoice {
    client::Encoding encoding = client::Encoding::windows1250;
    bool guess = false;  // by what the file's start holds
};

// --encoding: the encoding of the file's texts.
void AddEncodingOption(Program& program, CLI::App& command, EncodingChoice& choice);

// As --encoding takes it.
std::string NameOf(const EncodingChoice& choice);

// The encoding of a choice for a file. False when the file is no map, which has been said then.
bool ChooseEncoding(const EncodingChoice& choice, const std::string& file, Environment& environment,
                    client::Encoding& encoding);

// Warns of bytes that were no characters, and of texts that look like another encoding.
void WarnOfEncoding(const std::string& file, const client::TextDecoder& decoder, client::Encoding taken,
                    Environment& environment);

// --orientation: the axis orientation by name or number; the code's initial value is the default.
void AddOrientationOption(Program& program, CLI::App& command, int& code);

}  // namespace vemrado::tools
