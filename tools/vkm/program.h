// The program around its commands: the option table, what every command has in common, and how a run ends.

#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "failure.h"
#include "standard_output.h"
#include "translations.h"

namespace vemrado::tools {

// What a command runs with. Data goes to output, everything else through Error and Warn to standard error.
class Environment {
  public:
    StandardOutput output;
    bool quiet = false;

    // One clear sentence of UTF-8, shown even when quiet.
    void Error(const std::string& sentence);
    // The same, not shown when quiet.
    void Warn(const std::string& sentence);

    // The text of the module's last message box, in UTF-8; it has been shown already.
    std::string lastBox;
    // Message boxes shown so far.
    int boxCount = 0;
};

// Runs a command and returns its exit code. It may throw Failure.
using CommandRun = std::function<int(Environment& environment)>;

struct Example {
    std::string_view command;
    Message says;
};

struct CommandText {
    std::string_view name;
    Message summary;      // one line without a full stop
    Message description;  // paragraphs, separated by empty lines
    std::vector<Example> examples;
};

struct Command {
    CommandText text;
    CommandRun run;
    CLI::App* options;
};

class Program {
  public:
    Program();

    // Adds a command with the options that every command has; its own options are added to the result.
    CLI::App& Add(const CommandText& text, CommandRun run);
    // Adds a command of the build that people need not see.
    CLI::App& AddHidden(std::string_view name, CommandRun run);

    // A command that this build does not have, with the sentence that says what brings it.
    void LeaveOut(std::string_view name, Message reason) { leftOut[name] = reason; }

    // Values that an option takes, for completion.
    void SetChoices(const CLI::Option& option, std::vector<std::string> names);
    const std::vector<std::string>& Choices(const CLI::Option& option) const;

    const std::vector<Command>& Commands() const { return commands; }
    CLI::App& Options() { return app; }

    // Reads the command line, runs the command and returns the exit code of the process.
    int Run(int argumentCount, const char* const* arguments);

  private:
    int RunGuarded(int argumentCount, const char* const* arguments);
    // Answers "vkm help", "vkm help COMMAND" and "vkm version", and words that are no command; none for the
    // rest.
    std::optional<int> AnswerFirstWord(const std::vector<std::string>& words);
    const CLI::App* FindCommand(const std::string& name) const;
    int Help(const std::vector<std::string>& words);
    int ReportUnknown(const std::string& word);
    int ReportUsage(const CLI::ParseError& error);
    int RunChosen();

    Environment environment;
    std::string dataDirectory;
    CLI::App app;
    std::vector<Command> commands;
    std::vector<Command> hiddenCommands;
    std::map<std::string_view, Message> leftOut;
    std::map<const CLI::Option*, std::vector<std::string>> choices;
};

}  // namespace vemrado::tools
