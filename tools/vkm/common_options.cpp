#include "common_options.h"

#include <filesystem>
#include <vector>

#include "client/axis_orientation.h"
#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

constexpr const char* guessedEncoding = "auto";

}  // namespace

CLI::Validator ExistingDirectory() {
    const auto check = [](std::string& name) {
        const bool exists = client::KindOfFile(name) == client::FileKind::directory;
        return exists ? std::string() : "there is no directory " + client::SystemTextToUtf8(name);
    };
    return CLI::Validator(check, "");
}

void AddFileArgument(CLI::App& command, std::string& file) {
    command.add_option("FILE", file, "The VKM file, or an archive that holds one; - is standard input")
        ->type_name("")
        ->required();
}

CLI::Validator NoNegativeNumber() {
    const auto check = [](std::string& text) {
        double value = 0;
        return CLI::detail::lexical_cast(text, value) && value >= 0
                   ? std::string()
                   : Filled("'{}' is no number from 0 on", {text});
    };
    return {check, ""};
}

CLI::Option* AddToleranceOption(CLI::App& command, double& tolerance) {
    return command.add_option("--tolerance", tolerance, "Metres by which a text may have moved")
        ->type_name("M")
        ->capture_default_str()
        ->check(NoNegativeNumber());
}

void RefuseInputAsOutput(const std::string& input, const std::string& output) {
    std::error_code none;
    if (input == client::standardInputName || output.empty() || output == client::standardInputName) return;
    if (!std::filesystem::equivalent(client::NativePath(input), client::NativePath(output), none)) return;
    throw Failure(exitUsage,
                  Filled("{}: an input cannot be the output as well", {client::SystemTextToUtf8(input)}));
}

void AddEncodingOption(Program& program, CLI::App& command, EncodingChoice& choice) {
    const auto choose = [&choice](const std::string& name) {
        choice.guess = name == guessedEncoding;
        if (choice.guess) return;
        const auto found = client::FindEncoding(name);
        if (!found) throw CLI::ValidationError("--encoding", Filled("there is no encoding '{}'", {name}));
        choice.encoding = *found;
    };
    CLI::Option* option = command.add_option_function<std::string>(
        "-e,--encoding", choose,
        "Encoding of the file's texts: windows-1250, cp852, iso-8859-2, utf-8, or auto to guess it");
    option->type_name("NAME")->default_str(
        std::string(client::encodingNames[static_cast<size_t>(choice.encoding)]));
    std::vector<std::string> names = {client::encodingNames.begin(), client::encodingNames.end()};
    names.emplace_back(guessedEncoding);
    program.SetChoices(*option, names);
}

std::string NameOf(const EncodingChoice& choice) {
    return choice.guess ? guessedEncoding
                        : std::string(client::encodingNames[static_cast<size_t>(choice.encoding)]);
}

bool ChooseEncoding(const EncodingChoice& choice, const std::string& file, Environment& environment,
                    client::Encoding& encoding) {
    encoding = choice.encoding;
    if (!choice.guess) return true;
    try {
        constexpr size_t enough = 1 << 20;
        client::EncodingEvidence evidence;
        evidence.Add(client::LookAtInput(file, enough).start);
        encoding = evidence.Guess().value_or(encoding);
        return true;
    } catch (const client::ForeignFile& foreign) {
        environment.Error(foreign.what());
        return false;
    }
}

void WarnOfEncoding(const std::string& file, const client::TextDecoder& decoder, client::Encoding taken,
                    Environment& environment) {
    const std::string advice =
        client::EncodingAdvice(decoder.ReplacedBytes(), decoder.Evidence(), taken, "--encoding ");
    const std::string name = client::SystemTextToUtf8(client::ShownName(file.c_str()));
    if (!advice.empty()) environment.Warn(name + ": " + advice);
}

void AddOrientationOption(Program& program, CLI::App& command, int& code) {
    const auto choose = [&code](const std::string& text) {
        const auto found = client::FindAxisOrientation(text);
        if (!found)
            throw CLI::ValidationError("--orientation", "there is no axis orientation '" + text + "'");
        code = *found;
    };
    std::vector<std::string> names;
    std::string all;
    for (const client::AxisOrientation& orientation : client::axisOrientations) {
        names.emplace_back(orientation.name);
        all +=
            (names.size() % 4 == 1 ? "\n" : "  ") + names.back() + " = " + std::to_string(orientation.code);
    }
    CLI::Option* option = command.add_option_function<std::string>(
        "--orientation", choose,
        std::string(Translated("What a point (x, y) of the file becomes, by name or number:")) + all);
    option->type_name("AXES")->default_str(std::string(client::AxisOrientationName(code)));
    program.SetChoices(*option, names);
}

}  // namespace vemrado::tools
