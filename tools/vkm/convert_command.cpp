// vkm convert: to any format that GDAL writes, through the driver that GIS programs use.

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <set>

#include "client/axis_orientation.h"
#include "client/standard_input.h"
#include "client/stop_request.h"
#include "client/system.h"
#include "client/text_encoding.h"
#include "commands.h"
#include "common_options.h"
#include "convert_jobs.h"
#include "convert_library.h"
#include "framework/framework.h"
#include "program.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::tools {
namespace {

struct ConvertOptions {
    std::vector<std::string> files;
    std::string output;
    std::string format;
    std::vector<std::string> layers;
    std::string reference;
    bool parcels = false;
    int jobs = 1;
    int axisOrientation = 128;
    EncodingChoice encoding;
};

// The info window's bar of a conversion.
class Progress {
  public:
    Progress() : window(create_info_ext(lines, 1, "", "")) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() {
        if (window != nullptr) close_info(window);
    }

    // False when the user asks to stop.
    bool Draw(double share) {
        const int percent = static_cast<int>(100 * share);
        if (window == nullptr || percent == drawn) return !client::StopRequested();
        drawn = percent;
        return draw_info(window, 100, percent, 0) == 0 && !client::StopRequested();
    }

  private:
    static constexpr const char* lines[] = {"Converting"};
    void* window;
    int drawn = -1;
};

std::vector<std::string> DriverOptions(const ConvertOptions& options) {
    const char* data = FrameworkGetDataDirectory();
    std::vector<std::string> list = {
        "ENCODING=" + NameOf(options.encoding),
        "ORIENTATION=" + std::to_string(options.axisOrientation),
        "SYMBOLOGY=" + std::string(data != nullptr ? data : "NO"),
        std::string("PARCELS=") + (options.parcels ? "YES" : "NO"),
    };
    if (!options.reference.empty()) list.push_back("SRS=" + options.reference);
    return list;
}

std::string InputName(const std::string& file) {
    return file == client::standardInputName ? "/vsistdin/" : file;
}

bool IsFolder(const std::string& output) {
    return output.ends_with('/') || client::KindOfFile(output) == client::FileKind::directory;
}

// The requests of a run: one for all files, or one each when the output is a folder.
std::vector<gdal::ConvertRequest> RequestsOf(const ConvertOptions& options) {
    gdal::ConvertRequest request;
    request.output = options.output;
    request.outputIsFolder = IsFolder(options.output);
    request.format = options.format;
    request.layers = options.layers;
    request.openOptions = DriverOptions(options);
    std::vector<gdal::ConvertRequest> requests;
    if (request.outputIsFolder) {
        for (const std::string& file : options.files) {
            requests.push_back(request);
            requests.back().inputs = {InputName(file)};
        }
        return requests;
    }
    for (const std::string& file : options.files) request.inputs.push_back(InputName(file));
    if (options.files.size() > 1) request.openOptions.push_back("SOURCE_FIELD=YES");
    return {request};
}

// Each input gets an output of its own name in the folder, which is made when it is not there.
void PrepareFolder(const ConvertOptions& options) {
    if (options.format.empty())
        throw Failure(exitUsage, "--output is a folder: say by --format what the files in it shall be");
    std::set<std::string> names;
    for (const std::string& file : options.files) {
        if (file == client::standardInputName)
            throw Failure(exitUsage, "standard input has no name for a file in a folder: --output needs one");
        if (!names.insert(std::filesystem::path(file).stem()).second)
            throw Failure(exitUsage,
                          "two inputs would have the same output: " + client::SystemTextToUtf8(file));
    }
    std::error_code error;
    std::filesystem::create_directory(options.output, error);
    if (error) {
        throw Failure(exitInternal, client::SystemTextToUtf8(options.output) +
                                        ": cannot be made: " + client::SystemTextToUtf8(error.message()));
    }
}

void CheckFile(const ConvertOptions& options) {
    if (std::ranges::count(options.files, client::standardInputName) > 1)
        throw Failure(exitUsage, "standard input can be read only once");
    for (const std::string& file : options.files) {
        std::error_code none;
        if (std::filesystem::equivalent(file, options.output, none))
            throw Failure(exitUsage,
                          client::SystemTextToUtf8(file) + ": an input cannot be the output as well");
    }
}

int ExitCodeOf(gdal::ConvertOutcome outcome) {
    switch (outcome) {
        case gdal::ConvertOutcome::complete:
            return exitDone;
        case gdal::ConvertOutcome::badRequest:
            return exitUsage;
        case gdal::ConvertOutcome::outputFailed:
            return exitInternal;
        default:
            return exitInput;
    }
}

int RunOne(const gdal::ConvertRequest& request, const std::function<bool(double)>& progress,
           Environment& environment) {
    const gdal::ConvertReports reports = {progress, [&](const std::string& text) { environment.Warn(text); }};
    gdal::ConvertResult result;
    (*LoadConverter())(request, reports, result);
    // The warnings have said what is incomplete.
    const bool said = result.outcome == gdal::ConvertOutcome::incomplete && !environment.quiet;
    if (!result.problem.empty() && !said) environment.Error(result.problem);
    return ExitCodeOf(result.outcome);
}

// A file each, in as many processes as wanted.
int RunMany(const std::vector<gdal::ConvertRequest>& requests, int processes, Environment& environment) {
    Progress bar;
    Jobs jobs;
    jobs.work = [&](size_t i) -> int {
        if (client::StopRequested()) return exitInput;
        try {
            return RunOne(
                requests[i], [](double) { return !client::StopRequested(); }, environment);
        } catch (const std::exception& error) {
            environment.Error(client::SystemTextToUtf8(requests[i].inputs.front()) + ": " + error.what());
            return exitInternal;
        }
    };
    jobs.progress = [&](size_t finished) {
        bar.Draw(static_cast<double>(finished) / static_cast<double>(requests.size()));
    };
    jobs.broken = [&](size_t i, unsigned long process, int signal) -> int {
        std::error_code none;
        std::filesystem::remove_all(
            std::filesystem::path(requests[i].output) / gdal::StagingFolderName(process), none);
        environment.Error(client::SystemTextToUtf8(requests[i].inputs.front()) +
                          ": the process that converted it was ended by signal " + std::to_string(signal));
        return exitInternal;
    };
    return RunJobs(requests.size(), processes, jobs);
}

int RunConvert(const ConvertOptions& options, Environment& environment) {
    if (IsFolder(options.output)) {
        PrepareFolder(options);
    } else {
        CheckFile(options);
    }
    const std::vector<gdal::ConvertRequest> requests = RequestsOf(options);
    LoadConverter();
    if (requests.size() > 1) return RunMany(requests, options.jobs, environment);
    Progress bar;
    return RunOne(
        requests.front(), [&](double share) { return bar.Draw(share); }, environment);
}

}  // namespace

void AddConvertCommand(Program& program) {
    const auto options = std::make_shared<ConvertOptions>();
    const CommandText text = {
        "convert",
        "Convert files to GeoPackage, DXF, GeoJSON and other formats",
        "Writes lines, points and texts, with --parcels parcel polygons too, in a format that GDAL writes: "
        "the output's name tells which, or --format. Formats that hold one layer only get a file for each, "
        "such as town_lines.shp; a DXF file takes all features with their layers. A GeoPackage opens in "
        "QGIS with the styles of the symbology.\n\n"
        "Many inputs become one output with a field source, or an output each when OUT is a folder. An "
        "output appears whole or not at all. A file without its closing record is converted without its "
        "last element; the exit code is 1 then.",
        {{"vkm convert town.vkm -o town.gpkg", "a GeoPackage that looks like the map"},
         {"vkm convert town.vkm -o town.gpkg --parcels", "with parcel polygons and their numbers"},
         {"vkm convert sheets/*.vkm -o country.gpkg", "many files in one"},
         {"vkm convert sheets/*.vkm -o out/ --format fgb --jobs 4", "a file each, four at a time"},
         {"vkm convert town.vkm -o lines.geojson --layers lines", "one layer only"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunConvert(*options, environment); });
    command.add_option("FILE", options->files, "The VKM files; - is standard input")
        ->type_name("")
        ->required();
    command.add_option("-o,--output", options->output, "The output file, or a folder for an output each")
        ->type_name("OUT")
        ->required();
    CLI::Option* format =
        command.add_option("-f,--format", options->format, "A file extension or the name of a GDAL driver")
            ->type_name("FORMAT");
    program.SetChoices(
        *format, {"gpkg", "fgb", "geojson", "geojsonl", "csv", "dxf", "gml", "kml", "shp", "sqlite", "xlsx"});
    CLI::Option* layers =
        command.add_option("--layers", options->layers, "Only these of lines, points, texts and parcels")
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    program.SetChoices(*layers, {"lines", "points", "texts", "parcels"});
    command.add_flag("--parcels", options->parcels, "Add parcel polygons built from the boundary lines");
    command
        .add_option("--srs", options->reference,
                    "Reference system, such as EPSG:5514 (the default); NO for none")
        ->type_name("SRS");
    command.add_option("-j,--jobs", options->jobs, "Files converted at the same time when OUT is a folder")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, 256));
    AddOrientationOption(program, command, options->axisOrientation);
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
