// vkm diff: what changed between two states of a map.

#include <memory>

#include "client/standard_input.h"
#include "commands.h"
#include "common_options.h"
#include "diff_report.h"
#include "inputs.h"
#include "map/diff.h"
#include "map_states.h"
#include "program.h"

namespace vemrado::tools {
namespace {

// As the program of that name has them.
enum DiffExit : int { exitEqual = 0, exitDifferent = 1, exitBroken = 3 };

struct DiffOptions {
    std::string oldFile;
    std::string newFile;
    double tolerance = map::usualTolerance;
    bool json = false;
    EncodingChoice encoding;
    std::string output;
};

int RunDiff(const DiffOptions& options, Environment& environment) {
    if (options.oldFile == client::standardInputName && options.newFile == client::standardInputName)
        throw Failure(exitUsage, "standard input can be read only once");
    map::StateValues values;
    map::MapState old(values);
    map::MapState now(values);
    const auto read = [&](const std::string& file, map::MapState& state, client::Encoding& encoding) {
        const std::string name = FindOneInput(file);
        return ChooseEncoding(options.encoding, name, environment, encoding) &&
               ReadMapState(name, encoding, state, environment);
    };
    client::Encoding oldEncoding{};
    client::Encoding newEncoding{};
    const bool oldRead = read(options.oldFile, old, oldEncoding);
    if (!read(options.newFile, now, newEncoding) || !oldRead) return exitBroken;
    DiffReport report(environment.output, options.json, oldEncoding, newEncoding);
    std::optional<FeatureFile> features;
    if (!options.output.empty()) report.AddTo(features.emplace(options.output));
    map::CompareMaps(old, now, values, options.tolerance, report);
    if (features) features->Write();
    report.WriteTotals();
    return report.Any() ? exitDifferent : exitEqual;
}

}  // namespace

void AddDiffCommand(Program& program) {
    const auto options = std::make_shared<DiffOptions>();
    const CommandText text = {
        "diff",
        "Say what changed between two states of a map",
        "Compares what the maps show: the order of records, the direction of lines, where they are cut and "
        "how "
        "numbers are written make no difference. Lines are compared segment by segment within a layer. Equal "
        "geometry with another code, symbol or text is changed; a text that moved by no more than the "
        "tolerance "
        "is moved. Totals stand at the end.\n\n"
        "The exit code is 0 when the maps are equal, 1 when they differ and 3 when a file cannot be "
        "compared.",
        {{"vkm diff old.vkm new.vkm", "one line for each change"},
         {"vkm diff --json old.vkm new.vkm | jq 'select(.kind == \"text\")'", "the texts that changed"},
         {"vkm diff old.vkm new.vkm -o diff.gpkg", "for QGIS: added green, removed red, changed blue"},
         {"vkm diff --tolerance 0.5 old.vkm new.vkm", "texts may have moved by half a metre"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunDiff(*options, environment); });
    command.add_option("OLD", options->oldFile, "The VKM file as it was; - is standard input")
        ->type_name("")
        ->required();
    command.add_option("NEW", options->newFile, "The VKM file as it is; - is standard input")
        ->type_name("")
        ->required();
    AddToleranceOption(command, options->tolerance);
    command
        .add_option("-o,--output", options->output,
                    "Write the changes as features too, in a format that GDAL writes, such as GeoPackage")
        ->type_name("OUT");
    command.add_flag("--json", options->json, "Write changes as JSON Lines");
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
