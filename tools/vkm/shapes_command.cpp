// vkm shapes: shape files from their text sources and back.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "client/atomic_output.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "program.h"
#include "shape_source.h"

namespace vemrado::tools {
namespace {

struct ShapesOptions {
    std::string action;
    std::string input;
    std::string output;
};

std::string ShownInput(const std::string& path) {
    return client::SystemTextToUtf8(client::ShownName(path.c_str()));
}

[[noreturn]] void FailReading(const std::string& path, const char* reason) {
    throw Failure(exitInput, ShownInput(path) + ": " + client::SystemTextToUtf8(reason));
}

std::string ReadWholeFile(const std::string& path) {
    std::string bytes;
    char block[65536];
    if (path == client::standardInputName) {
        while (true) {
            const int64_t count = client::ReadStandardInput(block, sizeof block);
            if (count < 0) FailReading(path, std::strerror(errno));
            if (count == 0) return bytes;
            bytes.append(block, static_cast<size_t>(count));
        }
    }
    if (client::KindOfFile(path) == client::FileKind::directory) FailReading(path, std::strerror(EISDIR));
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) FailReading(path, std::strerror(errno));
    while (const size_t count = std::fread(block, 1, sizeof block, file.get())) bytes.append(block, count);
    if (std::ferror(file.get()) != 0) FailReading(path, std::strerror(errno));
    return bytes;
}

std::string Pack(const std::string& path) {
    const std::string source = ReadWholeFile(path);
    try {
        return WriteShapeFile(ReadShapeSource(source));
    } catch (const ShapeSourceError& error) {
        throw Failure(exitInput, ShownInput(path) + ":" + std::to_string(error.Line()) + ": " + error.what());
    } catch (const ShapeFileError& error) {
        throw Failure(exitInput, ShownInput(path) + ": " + error.what());
    }
}

std::string Unpack(const std::string& path) {
    const std::string bytes = ReadWholeFile(path);
    try {
        return WriteShapeSource(ReadShapeFile(bytes));
    } catch (const ShapeFileError& error) {
        throw Failure(exitInput,
                      ShownInput(path) + ": " + error.what() + ", at byte " + std::to_string(error.Offset()));
    }
}

int RunShapes(const ShapesOptions& options, Environment& environment) {
    const bool pack = options.action == "pack";
    if (pack && options.output.empty())
        throw Failure(exitUsage, "shapes pack needs the name of the file to write, or - for standard output");
    RefuseInputAsOutput(options.input, options.output);
    const std::string result = pack ? Pack(options.input) : Unpack(options.input);
    if (options.output.empty() || options.output == client::standardInputName) {
        environment.output.Write(result);
        return exitDone;
    }
    client::AtomicOutput output(options.output);
    output.Write(result);
    output.Commit();
    return exitDone;
}

}  // namespace

void AddShapesCommand(Program& program) {
    const auto options = std::make_shared<ShapesOptions>();
    const CommandText text = {
        "shapes",
        "Make shape files of point symbols from text, and text from shape files",
        R"(pack makes a shape file (.ksh) from a text source; unpack writes the source of a shape file, to standard output
when no file is named. Packing what was unpacked gives the same bytes: records that are no drawings are kept
too. docs/symbology-format.md describes both formats.)",
        {{"vkm shapes pack points.txt POINTS.ksh", "make a shape file"},
         {"vkm shapes unpack POINTS.ksh", "look at its drawings"},
         {"vkm shapes unpack POINTS.ksh points.txt", "make a source to edit"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunShapes(*options, environment); });
    CLI::Option* action = command.add_option("ACTION", options->action, "pack or unpack");
    action->required()->check(CLI::IsMember({"pack", "unpack"}));
    program.SetChoices(*action, {"pack", "unpack"});
    command.add_option("IN", options->input, "File to read; - is standard input")->required();
    command.add_option("OUT", options->output, "File to write; - is standard output");
}

}  // namespace vemrado::tools
