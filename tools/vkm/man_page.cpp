#include <string>
#include <string_view>

#include "help_format.h"
#include "manual.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

// Text for troff: hyphens of options stay hyphens, and no line is taken for a request.
std::string Escaped(std::string_view text) {
    std::string escaped;
    bool lineStart = true;
    for (const char letter : text) {
        if (lineStart && (letter == '.' || letter == '\'')) escaped += "\\&";
        if (letter == '\\') {
            escaped += "\\e";
        } else if (letter == '-') {
            escaped += "\\-";
        } else if (letter == '"') {
            escaped += "\\(dq";
        } else {
            escaped += letter;
        }
        lineStart = letter == '\n';
    }
    return escaped;
}

std::string Paragraphs(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const size_t end = text.find("\n\n");
        result += ".PP\n" + Escaped(text.substr(0, end)) + '\n';
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    }
    return result;
}

// "-e, --encoding NAME"
std::string OptionHeading(const CLI::Option& option) {
    std::string heading;
    const auto add = [&](const std::string& name) {
        heading.append(heading.empty() ? "" : ", ").append("\\fB").append(Escaped(name)).append("\\fR");
    };
    if (option.get_positional()) add(option.get_name(true));
    for (const std::string& name : option.get_snames()) add("-" + name);
    for (const std::string& name : option.get_lnames()) add("--" + name);
    const std::string value = option.get_positional() ? std::string() : ValueName(option);
    if (!value.empty()) heading += " \\fI" + Escaped(value) + "\\fR";
    return heading;
}

std::string OptionText(const CLI::Option& option) {
    return ".TP\n" + OptionHeading(option) + '\n' + Escaped(OptionDescription(option)) + ".\n";
}

std::string OptionsOf(const CLI::App& app) {
    std::string text;
    for (const bool positional : {true, false}) {
        for (const CLI::Option* option : app.get_options()) {
            if (option->get_positional() == positional) text += OptionText(*option);
        }
    }
    return text;
}

std::string Synopsis(const Command& command) {
    std::string text = ".B vkm " + Escaped(command.text.name) + "\n[\\fI" + Translated("OPTION") + "\\fR]...";
    for (const CLI::Option* option : command.options->get_options()) {
        if (!option->get_positional()) continue;
        const std::string name = "\\fI" + Escaped(option->get_name(true)) + "\\fR";
        text += option->get_required() ? ' ' + name : " [" + name + ']';
        if (option->get_items_expected_max() > 1) text += "...";
    }
    return text + "\n.br\n";
}

std::string CommandSection(const Command& command) {
    std::string text =
        ".SS vkm " + Escaped(command.text.name) + '\n' + Escaped(Translated(command.text.summary)) + ".\n";
    text += Paragraphs(Translated(command.text.description)) + OptionsOf(*command.options);
    if (command.text.examples.empty()) return text;
    text += ".PP\n" + Translated("Examples:") + '\n';
    for (const Example& example : command.text.examples) {
        text += ".TP\n.B " + Escaped(example.command) + '\n' + Escaped(Translated(example.says)) + '\n';
    }
    return text;
}

std::string Heading(Message text) {
    return ".SH " + Escaped(Translated(text)) + '\n';
}

std::string ExitCode(int code, Message text) {
    return ".TP\n.B " + std::to_string(code) + '\n' + Escaped(Translated(text)) + '\n';
}

std::string Afterwords() {
    return Heading("EXIT STATUS") +
           ExitCode(exitDone, "Done. A reader of standard output that goes away early is no error.") +
           ExitCode(exitInput, "An input could not be used or is incomplete, or the reading was stopped.") +
           ExitCode(exitUsage, "The command line makes no sense.") +
           ExitCode(exitInternal, "Anything else, such as a full disk.") + Heading("STREAMS") +
           Escaped(Translated(
               "Data goes to standard output, everything else to standard error. A file name of - is "
               "standard input; a "
               "file of that name is reached as ./-. Long files show a progress bar when standard error is a "
               "terminal. An "
               "interrupt (Ctrl-C) stops the reading cleanly; what was written until then is valid.")) +
           '\n';
}

}  // namespace

std::string ManualPage(Program& program) {
    std::string text =
        ".TH VKM 1 \"\" \"vemrado " VEMRADO_VERSION "\" \"" + Translated("User Commands") + "\"\n";
    text += Heading("NAME") + "vkm \\- " +
            Escaped(Translated("read VKM files, the text exchange format of digital cadastral maps")) + '\n' +
            Heading("SYNOPSIS");
    for (const Command& command : program.Commands()) text += Synopsis(command);
    text += ".B vkm \\-\\-version\n" + Heading("DESCRIPTION") +
            Escaped(Translated(
                "VKM files hold the lines, texts and symbols of digital cadastral maps. Each command reads "
                "them through the import module that surveying applications load.")) +
            '\n' + Heading("COMMANDS");
    for (const Command& command : program.Commands()) text += CommandSection(command);
    return text.append(Afterwords());
}

}  // namespace vemrado::tools
