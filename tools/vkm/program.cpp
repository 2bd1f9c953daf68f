#include "program.h"

#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "client/atomic_output.h"
#include "client/data_directory.h"
#include "client/message_boxes.h"
#include "client/system.h"
#include "client/text_encoding.h"
#include "common_options.h"
#include "help_format.h"
#include "inputs.h"
#include "translations.h"
#include "unknown_command.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::tools {
namespace {

constexpr std::string_view programName = "vkm";

void Say(const std::string& text) {
    client::WriteStandardError(std::string(programName) + ": " + client::Printable(TranslatedSentence(text)) +
                               "\n");
}

std::string ExamplesText(const std::vector<Example>& examples) {
    if (examples.empty()) return {};
    std::string text(Translated("Examples:"));
    for (const Example& example : examples) {
        text.append("\n  ").append(example.command).append("\n      ").append(Translated(example.says));
    }
    return text;
}

}  // namespace

void Environment::Error(const std::string& sentence) {
    Say(sentence);
}

void Environment::Warn(const std::string& sentence) {
    if (!quiet) Say(sentence);
}

Program::Program()
    : app(Translated("Reads VKM files, the text exchange format of digital cadastral maps."),
          std::string(programName)) {
    app.set_version_flag("-V,--version", std::string(programName) + " " + VEMRADO_VERSION,
                         "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.allow_windows_style_options(false);  // "/data/map.vkm" is a file there too
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormat>());
    app.footer(Translated("'vkm help COMMAND' explains a command and gives examples."));
}

CLI::App& Program::Add(const CommandText& text, CommandRun run) {
    CLI::App* command =
        app.add_subcommand(std::string(text.name), Translated(text.summary))->group(Translated("Commands"));
    command->add_flag("-q,--quiet", environment.quiet, "No progress bar and no warnings, errors only");
    constexpr const char* dataText =
        "Directory that holds VKMSym, the symbology\n(default: the sample symbology of this program)";
    command->add_option("--data", dataDirectory, dataText)->type_name("DIR")->check(ExistingDirectory());
    command->footer(ExamplesText(text.examples));
    commands.push_back({text, std::move(run), command});
    return *command;
}

CLI::App& Program::AddHidden(std::string_view name, CommandRun run) {
    CLI::App* command = app.add_subcommand(std::string(name), "")->group("");
    hiddenCommands.push_back({{name, {}, {}, {}}, std::move(run), command});
    return *command;
}

void Program::SetChoices(const CLI::Option& option, std::vector<std::string> names) {
    choices[&option] = std::move(names);
}

const std::vector<std::string>& Program::Choices(const CLI::Option& option) const {
    static const std::vector<std::string> none;
    const auto found = choices.find(&option);
    return found == choices.end() ? none : found->second;
}

int Program::Run(int argumentCount, const char* const* arguments) {
    client::PrepareStandardStreams();
    try {
        return RunGuarded(argumentCount, arguments);
    } catch (const ClosedPipe&) {
        return exitDone;
    } catch (const Failure& failure) {
        Say(failure.what());
        return failure.Code();
    } catch (const client::OutputError& error) {
        Say(error.what());
    } catch (const std::bad_alloc&) {
        Say("there is not enough memory");
    } catch (const std::exception& exception) {
        Say(std::string("internal error: ") + exception.what());
    }
    return exitInternal;
}

int Program::RunGuarded(int argumentCount, const char* const* arguments) {
    if (const auto answered = AnswerFirstWord({arguments + 1, arguments + argumentCount})) {
        environment.output.Flush();
        return *answered;
    }
    int exitCode = exitDone;
    try {
        app.parse(argumentCount, arguments);
        exitCode = RunChosen();
    } catch (const CLI::CallForHelp&) {
        environment.output.Write(app.help());
    } catch (const CLI::CallForVersion&) {
        environment.output.Write(app.version() + "\n");
    } catch (const CLI::ParseError& error) {
        return ReportUsage(error);
    }
    environment.output.Flush();
    return exitCode;
}

const CLI::App* Program::FindCommand(const std::string& name) const {
    for (const std::vector<Command>* list : {&commands, &hiddenCommands}) {
        for (const Command& command : *list) {
            if (command.text.name == name) return command.options;
        }
    }
    return nullptr;
}

std::optional<int> Program::AnswerFirstWord(const std::vector<std::string>& words) {
    if (words.empty() || words.front().starts_with('-') || FindCommand(words.front()) != nullptr)
        return std::nullopt;
    if (words.front() == "help") return Help(words);
    if (words.front() != "version") return ReportUnknown(words.front());
    environment.output.Write(app.version() + "\n");
    return exitDone;
}

int Program::Help(const std::vector<std::string>& words) {
    const CLI::App* about = words.size() > 1 ? FindCommand(words[1]) : &app;
    if (about == nullptr) return ReportUnknown(words[1]);
    environment.output.Write(about == &app ? app.help() : about->help(std::string(programName)));
    return exitDone;
}

int Program::ReportUnknown(const std::string& word) {
    const auto absent = leftOut.find(word);
    if (absent != leftOut.end()) {
        Say(Translated(absent->second));
        return exitUsage;
    }
    std::vector<std::string_view> names = {"help", "version"};
    for (const Command& command : commands) names.push_back(command.text.name);
    Say(UnknownCommandMessage(client::SystemTextToUtf8(word), names));
    client::WriteStandardError(Filled("Try '{}'.", {"vkm --help"}) + "\n");
    return exitUsage;
}

int Program::ReportUsage(const CLI::ParseError& error) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? std::string() : " " + chosen.front()->get_name();
    Say(error.what());
    client::WriteStandardError(Filled("Try '{}'.", {std::string(programName) + command + " --help"}) + "\n");
    return exitUsage;
}

int Program::RunChosen() {
    const client::MessageBoxes boxes([this](const std::string& text) {
        Say(text);
        environment.lastBox = text;
        ++environment.boxCount;
    });
    client::CatchInterrupt();
    PrepareInputFiles();
    client::UseDataDirectory(dataDirectory.empty() ? client::FindSampleSymbology(client::ProgramPath())
                                                   : client::DataDirectoryOf(dataDirectory));
    if (environment.quiet) InfoSetVisible(0);
    for (const std::vector<Command>* list : {&commands, &hiddenCommands}) {
        for (const Command& command : *list) {
            if (command.options->parsed()) return command.run(environment);
        }
    }
    return exitUsage;
}

}  // namespace vemrado::tools
