// vkm info: what is in files, as a table for people or as JSON for programs.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "client/standard_input.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "info_report.h"
#include "input_progress.h"
#include "inputs.h"
#include "program.h"
#include "reading.h"

namespace vemrado::tools {
namespace {

struct InfoOptions {
    InputOptions inputs;
    int axisOrientation = 1;
    bool json = false;
};

struct InspectedFile {
    ReadOutcome outcome;
    FileReport report;
};

InspectedFile Inspect(const Input& input, int axisOrientation, Environment& environment) {
    const std::string& file = input.name;
    map::Importer importer;
    FileReport report;
    if (!input.problem.empty()) {
        environment.Error(input.problem);
        report.file = client::SystemTextToUtf8(file);
        report.error = input.problem;
        return {ReadOutcome::notOpened, std::move(report)};
    }
    map::OpenOptions open;
    open.fileName = file;
    open.axisOrientation = axisOrientation;
    const ReadingEnd result = ReadElements(importer, open, environment, [&](map::ElementKind kind) {
        if (kind == map::ElementKind::line) {
            report.summary.AddLine(importer.Line());
        } else {
            report.summary.AddText(importer.Text());
        }
    });
    report.file = client::SystemTextToUtf8(client::ShownName(file.c_str()));
    report.error = result.problem;
    report.opened = result.outcome != ReadOutcome::notOpened;
    report.complete = result.outcome == ReadOutcome::complete;
    report.scale = importer.Scale();
    report.relative = importer.Relative();
    report.linesRead = importer.LineCount();
    return {result.outcome, std::move(report)};
}

int RunInfo(const InfoOptions& options, Environment& environment) {
    const std::vector<Input> inputs = FindInputs(options.inputs);
    InputProgress progress(inputs);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    int exitCode = exitDone;
    for (const Input& input : inputs) {
        const InspectedFile inspected = Inspect(input, options.axisOrientation, environment);
        if (inputs.size() > 1) progress.Finish(input);
        if (inspected.outcome != ReadOutcome::complete) exitCode = exitInput;
        if (options.json) {
            list.push_back(ReportJson(inspected.report));
        } else {
            if (&input != &inputs.front()) environment.output.Write("\n");
            environment.output.Write(ReportText(inspected.report));
        }
        if (inspected.outcome == ReadOutcome::stopped) break;
    }
    if (options.json) environment.output.Write(list.dump(2) + '\n');
    return exitCode;
}

}  // namespace

void AddInfoCommand(Program& program) {
    const auto options = std::make_shared<InfoOptions>();
    const CommandText text = {
        "info",
        "Say what is in files: scale, extents, counts, completeness",
        R"(For each file: map scale, relative or absolute coordinates, extents, and by layer the lines, line elements by
type letter, texts, symbols and codes.

It also says whether the file is complete: a file without its closing record has lost its last element. The exit
code is 1 when any file is incomplete or cannot be used.)",
        {{"vkm info map.vkm", "a readable table"},
         {"vkm info --json *.vkm | jq '.[] | select(.complete | not) | .file'",
          "the incomplete files of a folder"},
         {"vkm info sheets/ archive.zip", "the maps of a folder and of an archive"},
         {"find . -name '*.vkm' | vkm info --files-from -", "the files of a list"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunInfo(*options, environment); });
    AddInputOptions(command, options->inputs);
    AddOrientationOption(program, command, options->axisOrientation);
    command.add_flag("--json", options->json, "A JSON array with one object a file");
}

}  // namespace vemrado::tools
