// vkm render: draws a file as a map.

#include <cmath>
#include <memory>
#include <optional>
#include <set>

#include "client/standard_input.h"
#include "client/symbology_index.h"
#include "client/system.h"
#include "commands.h"
#include "common_options.h"
#include "draw/map_sheet.h"
#include "draw/scene_builder.h"
#include "framework/framework.h"
#include "inputs.h"
#include "picture.h"
#include "program.h"
#include "reading.h"

namespace vemrado::tools {
namespace {

struct RenderOptions {
    std::string file;
    PictureOptions picture;
    draw::SceneOptions scene;
    draw::SheetOptions sheet;
    std::vector<int> layers;
    std::vector<double> box;
    bool noSymbols = false;
    int axisOrientation = 128;
};

draw::Box BoxOf(const std::vector<double>& corners) {
    const draw::Box box{std::min(corners[0], corners[2]), std::min(corners[1], corners[3]),
                        std::max(corners[0], corners[2]), std::max(corners[1], corners[3])};
    if (!(box.Width() > 0 && box.Height() > 0 && std::isfinite(box.Width()) && std::isfinite(box.Height()))) {
        throw Failure(exitUsage, "--bbox: the box has no area");
    }
    return box;
}

std::string Counted(uint64_t count, const char* what) {
    return std::to_string(count) + " " + what;
}

void WarnOfSkipped(const draw::Scene& scene, const std::string& name, Environment& environment) {
    if (!scene.mapScaleUsable) {
        environment.Warn(name + ": the map scale of its header is no scale; 1:1000 was taken");
    }
    const draw::Skipped& skipped = scene.skipped;
    std::string parts;
    const auto add = [&](uint64_t count, const char* what) {
        if (count > 0) parts += (parts.empty() ? "" : ", ") + Counted(count, what);
    };
    add(skipped.points, "points that are no place");
    add(skipped.symbols, "symbols of an impossible scale or rotation");
    add(skipped.texts, "texts of an impossible size or rotation");
    if (!parts.empty()) environment.Warn(name + ": left out " + parts);
}

// The name of a file without its folder and ending.
std::string TitleOf(const std::string& name) {
    const std::string base = name.substr(name.find_last_of("/\\") + 1);
    const size_t dot = base.rfind('.');
    return dot == 0 || dot == std::string::npos ? base : base.substr(0, dot);
}

int RunRender(RenderOptions options, Environment& environment) {
    if (!options.box.empty()) options.scene.box = options.sheet.box = BoxOf(options.box);
    options.scene.layers = {options.layers.begin(), options.layers.end()};
    options.scene.symbols = !options.noSymbols;
    CheckPicture(options.picture);

    const char* data = FrameworkGetDataDirectory();
    const client::SymbologyIndex index(data ? data : "");
    client::Importer importer;
    draw::SceneBuilder builder(importer, index, options.scene);
    client::OpenOptions open;
    open.fileName = FindOneInput(options.file);
    open.loadSymbology = true;
    open.axisOrientation = options.axisOrientation;
    open.flags = options.noSymbols ? CVKMInterface::flgSymbolsNone : CVKMInterface::flgSymbols;
    const auto take = [&](client::ElementKind kind) { builder.Take(kind); };
    const ReadOutcome outcome =
        ReadElements(importer, open, environment, take, "no picture was made").outcome;
    if (outcome != ReadOutcome::complete && outcome != ReadOutcome::incomplete) return exitInput;
    const draw::Scene scene = builder.Finish();

    const std::string name = client::SystemTextToUtf8(client::ShownName(open.fileName.c_str()));
    WarnOfSkipped(scene, name, environment);
    if (scene.layers.empty() && !options.sheet.box) {
        throw Failure(exitInput, name + ": nothing to draw");
    }
    if (options.sheet.title.empty()) options.sheet.title = TitleOf(name);
    const draw::MapSheet sheet(scene, index, options.sheet);
    MakePicture(options.picture, sheet.Page(), options.sheet.title,
                [&](draw::Canvas& canvas) { sheet.Draw(canvas); });
    return outcome == ReadOutcome::complete ? exitDone : exitInput;
}

}  // namespace

void AddRenderCommand(Program& program) {
    const auto options = std::make_shared<RenderOptions>();
    const CommandText text = {
        "render",
        "Draw a file as a map: PNG, SVG or PDF",
        "Draws lines in colour, width and dash pattern of their line types, symbols and texts, at the map "
        "scale of "
        "the file: a millimetre of an SVG or PDF picture is one on the printed map. --width makes the whole "
        "picture "
        "so many pixels wide instead. North is up unless --orientation says otherwise.\n\n"
        "The picture appears whole or not at all. A picture that would be too large is refused with its "
        "size: ask "
        "for a --width or a part of the map by --bbox.",
        {{"vkm render town.vkm -o town.png --legend", "a map sheet with frame, title and legend"},
         {"vkm render town.vkm -o town.svg --layers 1,4", "boundaries and buildings to go on drawing with"},
         {"vkm render town.vkm -o part.pdf --bbox=-742900,-1043100,-742700,-1043000", "a part, to scale"},
         {"vkm render country.vkm -o country.png --width 2000", "a large file at a glance"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunRender(*options, environment); });
    AddFileArgument(command, options->file);
    AddPictureOptions(command, options->picture, true);
    command.add_flag("--legend", options->sheet.legend,
                     "Add frame, title, grid, scale bar, north arrow and legend");
    command.add_option("--title", options->sheet.title, "Title (default: from the file's name)")
        ->type_name("TEXT");
    command.add_option("--layers", options->layers, "Draw only these layers, by number")
        ->type_name("N,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command.add_option("--bbox", options->box, "Draw only this box, in coordinates of the picture")
        ->type_name("X,Y,X,Y")
        ->delimiter(',')
        ->expected(4)
        ->allow_extra_args(false);
    command.add_flag("--no-symbols", options->noSymbols, "Leave the symbols out");
    AddAngleUnitOption(program, command, options->scene.angleUnit);
    AddOrientationOption(program, command, options->axisOrientation);
    AddEncodingOption(program, command, options->scene.encoding);
}

}  // namespace vemrado::tools
