// vkm render: draws a file as a map.

#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <set>

#include "client/standard_input.h"
#include "client/system.h"
#include "client/text_encoding.h"
#include "commands.h"
#include "common_options.h"
#include "draw/map_sheet.h"
#include "draw/scene_builder.h"
#include "draw/scene_changes.h"
#include "draw/stray_points.h"
#include "input_progress.h"
#include "inputs.h"
#include "map/diff.h"
#include "map_states.h"
#include "page_output.h"
#include "paper.h"
#include "picture.h"
#include "program.h"
#include "reading.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

struct RenderOptions {
    InputOptions inputs;
    PictureOptions picture;
    draw::SceneOptions scene;
    draw::SheetOptions sheet;
    PaperOptions paper;
    draw::PageOptions pages;  // as paper says
    EncodingChoice encoding;
    std::vector<std::string> layers;
    std::vector<double> box;
    bool noSymbols = false;
    std::string oldFile;  // draws what changed since that state; empty: the map as it is
    double tolerance = map::usualTolerance;
    int axisOrientation = 128;
    const CLI::App* command = nullptr;
};

draw::Box BoxOf(const std::vector<double>& corners) {
    const draw::Box box{std::min(corners[0], corners[2]), std::min(corners[1], corners[3]),
                        std::max(corners[0], corners[2]), std::max(corners[1], corners[3])};
    if (!(box.Width() > 0 && box.Height() > 0 && std::isfinite(box.Width()) && std::isfinite(box.Height()))) {
        throw Failure(exitUsage, "--bbox: the box has no area");
    }
    return box;
}

// Layers of a list such as 1,4-7.
std::set<int> LayersOf(const std::vector<std::string>& items) {
    constexpr int mostInARange = 1'000'000;
    std::set<int> layers;
    for (const std::string& item : items) {
        const char* const end = item.data() + item.size();
        int first = 0;
        auto read = std::from_chars(item.data(), end, first);
        int last = first;
        if (read.ec == std::errc() && read.ptr != end && *read.ptr == '-')
            read = std::from_chars(read.ptr + 1, end, last);
        if (read.ec != std::errc() || read.ptr != end || last < first || last - first > mostInARange) {
            throw Failure(exitUsage, Filled("--layers: '{}' is no layer number and no range such as 1-4",
                                            {client::SystemTextToUtf8(item)}));
        }
        for (int layer = first; layer <= last; ++layer) layers.insert(layer);
    }
    return layers;
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

// As --bbox takes it, in whole metres around the box.
std::string BoxText(const draw::Box& box) {
    char text[160];
    std::snprintf(text, sizeof text, "%.0f,%.0f,%.0f,%.0f", std::floor(box.minX), std::floor(box.minY),
                  std::ceil(box.maxX), std::ceil(box.maxY));
    return text;
}

std::string PlaceText(draw::Point point) {
    char text[160];
    std::snprintf(text, sizeof text, "%.2f %.2f", point.x + 0.0, point.y + 0.0);  // 0 for -0
    return text;
}

void WarnOfStrayPoints(const draw::Scene& scene, const std::string& name, Environment& environment) {
    const auto stray = draw::FindStrayPoints(scene);
    if (!stray) return;
    const double kilometres = stray->distance / 1000;
    char distance[40];
    std::snprintf(distance, sizeof distance, kilometres < 10 ? "%.1f" : "%.0f", kilometres);
    const std::string box = BoxText(stray->rest);
    const std::string place = PlaceText(stray->farthest);
    if (stray->count == 1) {
        environment.Warn(
            Filled("{}: one point lies {} km from the rest; --bbox={} leaves it out (it is at {})",
                   {name, distance, box, place}));
    } else {
        environment.Warn(Filled(
            "{}: {} points lie up to {} km from the rest; --bbox={} leaves them out (the farthest is at {})",
            {name, std::to_string(stray->count), distance, box, place}));
    }
}

// The name of a file without its folder and ending.
std::string TitleOf(const std::string& name) {
    const std::string base = name.substr(name.find_last_of("/\\") + 1);
    const size_t dot = base.rfind('.');
    return dot == 0 || dot == std::string::npos ? base : base.substr(0, dot);
}

void CheckRenderOptions(RenderOptions& options, const std::vector<Input>& inputs) {
    if (!options.box.empty()) options.scene.box = options.sheet.box = BoxOf(options.box);
    options.scene.layers = LayersOf(options.layers);
    options.scene.symbols = !options.noSymbols;
    options.sheet.pixels = options.picture.width;
    options.pages = ReadPaper(options.paper, options.picture);
    options.sheet.mapScale = options.pages.mapScale;
    CheckPicture(options.picture);
    for (const Input& input : inputs) RefuseInputAsOutput(input.name, options.picture.file);
    std::string& title = options.sheet.title;
    title = client::SystemTextToUtf8(title);
    if (client::Printable(title) != title || title.find('\n') != std::string::npos)
        throw Failure(exitUsage, Translated("--title: a title holds no control characters"));
}

std::string ShownName(const Input& input) {
    return client::SystemTextToUtf8(client::ShownName(input.name.c_str()));
}

// Takes every input into the scene. Complete when all of them are; notOpened, failed or stopped at the first
// that is.
ReadOutcome ReadInputs(const std::vector<Input>& inputs, const RenderOptions& options,
                       map::Importer& importer, draw::SceneBuilder& builder, Environment& environment) {
    map::OpenOptions open;
    open.symbology = true;
    open.symbols = !options.noSymbols;
    open.axisOrientation = options.axisOrientation;
    const auto take = [&](map::ElementKind kind) { builder.Take(kind); };
    ReadOutcome all = ReadOutcome::complete;
    InputProgress progress(inputs);
    for (const Input& input : inputs) {
        if (!input.problem.empty()) {
            environment.Error(input.problem);
            return ReadOutcome::notOpened;
        }
        open.fileName = input.name;
        const ReadOutcome outcome =
            ReadElements(importer, open, environment, take, "no picture was made").outcome;
        if (outcome != ReadOutcome::complete) all = outcome;
        if (outcome != ReadOutcome::complete && outcome != ReadOutcome::incomplete) return outcome;
        progress.Finish(input);
    }
    return all;
}

// Two states of the map that is drawn.
struct ComparedStates {
    map::StateValues values;
    map::MapState old{values};
    map::MapState now{values};
    client::Encoding oldEncoding{};
};

// Null when one of them is broken, which has been said.
std::unique_ptr<ComparedStates> ReadStates(const std::vector<Input>& inputs, const RenderOptions& options,
                                           Environment& environment) {
    if (inputs.size() != 1) throw Failure(exitUsage, "--changes: compares one map with its old state");
    const Input& now = inputs.front();
    // Once to compare it and once to draw it.
    if (now.name == client::standardInputName)
        throw Failure(exitUsage, "--changes: the new state is read twice and cannot be standard input");
    if (!now.problem.empty()) throw Failure(exitInput, now.problem);
    const std::string old = FindOneInput(options.oldFile);
    RefuseInputAsOutput(old, options.picture.file);
    auto states = std::make_unique<ComparedStates>();
    const bool read = ChooseEncoding(options.encoding, old, environment, states->oldEncoding) &&
                      ReadMapState(old, states->oldEncoding, states->old, environment) &&
                      ReadMapState(now.name, options.scene.encoding, states->now, environment);
    return read ? std::move(states) : nullptr;
}

// The scene of all that the builder took, with the changes in colour when states are given.
draw::Scene FinishScene(draw::SceneBuilder& builder, const ComparedStates* states,
                        const RenderOptions& options) {
    if (states == nullptr) return builder.Finish();
    draw::SceneChanges changes(builder, options.scene, states->oldEncoding);
    map::CompareMaps(states->old, states->now, states->values, options.tolerance, changes);
    draw::Scene scene = builder.Finish();
    changes.AddTo(scene);
    return scene;
}

// Tells what a picture would not show.
void CheckScene(const draw::Scene& scene, const RenderOptions& options, const std::string& name,
                Environment& environment) {
    WarnOfSkipped(scene, name, environment);
    if (scene.layers.empty() && !options.sheet.box) {
        throw Failure(exitInput, Filled("{}: nothing to draw", {name}));
    }
    if (options.sheet.box && !scene.whole.Meets(*options.sheet.box)) {
        throw Failure(exitInput, Filled("{}: nothing to draw in the --bbox: the map lies in {}",
                                        {name, BoxText(scene.whole)}));
    }
    if (!options.sheet.box) WarnOfStrayPoints(scene, name, environment);
}

void DrawPages(const draw::Scene& scene, const RenderOptions& options, const std::string& name,
               Environment& environment) {
    draw::PageOptions wanted = options.pages;
    wanted.box = options.sheet.box;
    wanted.legend = options.sheet.legend;
    wanted.title = options.sheet.title;
    const draw::MapPages pages(scene, wanted);
    if (pages.TooMany()) {
        throw Failure(exitUsage,
                      Filled("{}: takes more than {} pages at 1 : {}; take larger paper, another --scale, or "
                             "a part by --bbox",
                             {name, std::to_string(draw::MapPages::mostParts),
                              std::to_string(std::llround(pages.MapScale()))}));
    }
    const Picture picture{pages.FirstPage(), wanted.title, pages.Count(),
                          [&](draw::Canvas& canvas) { pages.Draw(canvas); }};
    MakePicture(options.picture, picture, environment);
}

void DrawSheet(const draw::Scene& scene, const RenderOptions& options, Environment& environment) {
    const draw::MapSheet sheet(scene, options.sheet);
    const Picture picture{sheet.Page(), options.sheet.title, sheet.Count(),
                          [&](draw::Canvas& canvas) { sheet.Draw(canvas); }};
    MakePicture(options.picture, picture, environment);
}

int RunRender(RenderOptions options, Environment& environment) {
    const std::vector<Input> inputs = FindInputs(options.inputs);
    if (WantsPage(options.picture))
        return MakePage(*options.command, options.picture, options.encoding, inputs, environment);
    CheckRenderOptions(options, inputs);
    const std::string& first = inputs.front().name;
    if (!ChooseEncoding(options.encoding, first, environment, options.scene.encoding)) return exitInput;

    std::unique_ptr<ComparedStates> states;
    if (!options.oldFile.empty()) {
        states = ReadStates(inputs, options, environment);
        if (!states) return exitInput;
    }

    map::Importer importer;
    draw::SceneBuilder builder(importer, options.scene);
    const ReadOutcome outcome = ReadInputs(inputs, options, importer, builder, environment);
    if (outcome != ReadOutcome::complete && outcome != ReadOutcome::incomplete) return exitInput;
    WarnOfEncoding(first, builder.Decoder(), options.scene.encoding, environment);
    const draw::Scene scene = FinishScene(builder, states.get(), options);
    states.reset();

    const std::string name = ShownName(inputs.front());
    CheckScene(scene, options, name, environment);
    if (options.sheet.title.empty()) options.sheet.title = client::Printable(TitleOf(name));
    if (options.paper.Wanted()) {
        DrawPages(scene, options, name, environment);
    } else {
        DrawSheet(scene, options, environment);
    }
    return outcome == ReadOutcome::complete ? exitDone : exitInput;
}

}  // namespace

void AddRenderCommand(Program& program) {
    const auto options = std::make_shared<RenderOptions>();
    const CommandText text = {
        "render",
        "Draw a file as a map: PNG, SVG, PDF or a page for the browser",
        R"(Draws lines in colour, width and dash pattern of their line types, symbols and texts, at the map scale of the
file: a millimetre of an SVG or PDF picture is one on the printed map. --width makes the whole picture so many pixels
wide instead. North is up unless --orientation says otherwise. Several sheets are drawn side by side, at the scale of the
first.

The picture appears whole or not at all. A picture that would be too large is refused with its size: ask for a --width
or a part of the map by --bbox.

A name that ends in .html makes a page with the map inside: one file to mail, that any browser opens without a network.
It takes one map, --encoding and --data; the rest is chosen in the page.)",
        {{"vkm render town.vkm -o town.png --legend", "a map sheet with frame, title and legend"},
         {"vkm render town.vkm -o town.svg --layers 1,4", "boundaries and buildings to go on drawing with"},
         {"vkm render town.vkm -o part.pdf --bbox=-742900,-1043100,-742700,-1043000", "a part, to scale"},
         {"vkm render town.vkm -o town.pdf --page a3 --landscape", "pages to print, with an overview"},
         {"vkm render new.vkm --changes old.vkm -o diff.png", "what is new, over the map in grey"},
         {"vkm render sheets/ -o country.png --width 2000", "many sheets at a glance"},
         {"vkm render town.vkm -o town.html", "a page with the map inside"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunRender(*options, environment); });
    options->command = &command;
    AddInputOptions(command, options->inputs);
    AddPictureOptions(program, command, options->picture, true);
    command.get_option("--output")
        ->description(
            "The picture; its name ends in .png, .svg, .pdf or .html, or is - for standard output "
            "with --format");
    CLI::Option& format = *command.get_option("--format");
    program.SetChoices(*format.description("Kind of the picture: png, svg, pdf or html"),
                       {"png", "svg", "pdf", std::string(pageFormat)});
    AddPaperOptions(program, command, options->paper);
    CLI::Option* changes =
        command
            .add_option(
                "--changes", options->oldFile,
                "Draw in grey, with what changed since this older map in colour: added green, removed red, "
                "changed and moved blue")
            ->type_name("OLD");
    AddToleranceOption(command, options->tolerance)->needs(changes);
    command.add_flag("--legend", options->sheet.legend,
                     "Add frame, title, grid, scale bar, north arrow and legend");
    command.add_option("--title", options->sheet.title, "Title (default: from the file's name)")
        ->type_name("TEXT");
    CLI::Option* layers =
        command.add_option("--layers", options->layers, "Draw only these layers, by number; 1-4 is a range")
            ->type_name("N,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    program.SetChoices(*layers, {"1", "2", "3", "4", "5", "6", "7", "8", "9"});
    command.add_option("--bbox", options->box, "Draw only this box, in coordinates of the picture")
        ->type_name("X,Y,X,Y")
        ->delimiter(',')
        ->expected(4)
        ->allow_extra_args(false);
    command.add_flag("--no-symbols", options->noSymbols, "Leave the symbols out");
    AddAngleUnitOption(program, command, options->scene.angleUnit);
    AddOrientationOption(program, command, options->axisOrientation);
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
