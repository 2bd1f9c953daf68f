#include "convert_run.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <set>

#include "client/standard_input.h"
#include "client/stop_request.h"
#include "client/system.h"
#include "convert_jobs.h"
#include "convert_library.h"
#include "convert_report.h"
#include "framework/framework.h"
#include "input_progress.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

std::vector<std::string> DriverOptions(const ConvertOptions& options) {
    const char* data = FrameworkGetDataDirectory();
    std::vector<std::string> list = {
        "ENCODING=" + NameOf(options.encoding),
        "ORIENTATION=" + std::to_string(options.axisOrientation),
        "SYMBOLOGY=" + std::string(data != nullptr ? data : "NO"),
        std::string("PARCELS=") + (options.parcels ? "YES" : "NO"),
    };
    if (!options.reference.empty()) list.push_back("SRS=" + options.reference);
    if (!options.angleUnit.empty()) list.push_back("ANGLE_UNIT=" + options.angleUnit);
    // Those that were given stand first: the driver takes the first of a name.
    list.insert(list.begin(), options.openOptions.begin(), options.openOptions.end());
    return list;
}

std::string InputName(const std::string& file) {
    return file == client::standardInputName ? "/vsistdin/" : file;
}

bool IsDatabase(const std::string& output) {
    return output.starts_with("PG:");
}

bool IsFolder(const std::string& output) {
    return !IsDatabase(output) &&
           (output.ends_with('/') || client::KindOfFile(output) == client::FileKind::directory);
}

// The name of an input's output in a folder, without an ending.
std::string OutputNameOf(const Input& input) {
    std::filesystem::path place = input.place;
    if (place.extension() == ".gz" || place.extension() == ".GZ") place.replace_extension();
    return place.replace_extension().generic_string();
}

// One run of the converter: all inputs, or one of them.
struct Work {
    gdal::ConvertRequest request;
    std::vector<size_t> inputs;  // their numbers among all
};

class Conversion {
  public:
    Conversion(const ConvertOptions& wanted, Environment& around)
        : options(wanted), environment(around), inputs(FindInputs(wanted.inputs)), progress(inputs) {}

    int Run();

  private:
    void Check() const;
    bool GoesOn() const;
    gdal::ConvertRequest CommonRequest() const;
    void PrepareFolder();
    std::vector<Work> Works();
    void TakeProblems();
    std::string Convert(const Work& work);
    bool Take(const Work& work, const gdal::ConvertResult& result);
    void TakeBroken(const Work& work, unsigned long process, int signal);
    int Conclude();
    int WorstOf(int a, int b) const;

    const ConvertOptions& options;
    Environment& environment;
    std::vector<Input> inputs;
    std::vector<ReportRow> rows;
    InputProgress progress;
    size_t done = 0;
    uint64_t bytesDone = 0;
    int exitCode = exitDone;
    bool stoppedTold = false;
};

void Conversion::Check() const {
    CheckReportName(options.report);
    if (options.append && options.update)
        throw Failure(exitUsage, "--append and --update exclude each other");
    if (options.output == gdal::standardOutputName && options.format.empty())
        throw Failure(exitUsage,
                      Translated("--output: standard output needs --format GeoJSONSeq, GeoJSON or CSV"));
    if (options.prune && !options.update) throw Failure(exitUsage, "--prune needs --update");
    const bool toFolder = IsFolder(options.output);
    if (toFolder && (options.append || options.update))
        throw Failure(exitUsage, "--append and --update need one output, not a folder");
    for (const std::string& option : options.openOptions) {
        if (option.find('=') == std::string::npos)
            throw Failure(exitUsage, "--open-option: '" + option + "' is not of the form NAME=VALUE");
    }
    for (const Input& input : inputs) {
        if (toFolder && input.name == client::standardInputName)
            throw Failure(exitUsage, "standard input has no name for a file in a folder: --output needs one");
        std::error_code none;
        if (!IsDatabase(options.output) && std::filesystem::equivalent(input.name, options.output, none))
            throw Failure(exitUsage,
                          client::SystemTextToUtf8(input.name) + ": an input cannot be the output as well");
    }
}

// Sheets that cannot be read are left out where there are many of them.
bool Conversion::GoesOn() const {
    return options.keepGoing || options.index || IsFolder(options.output) ||
           std::ranges::any_of(inputs, [](const Input& input) { return input.fromMany; });
}

gdal::ConvertRequest Conversion::CommonRequest() const {
    gdal::ConvertRequest request;
    request.output = options.output;
    request.format = options.format;
    request.layers = options.layers;
    request.openOptions = DriverOptions(options);
    request.keepGoing = GoesOn();
    request.indexOnly = options.index;
    request.prune = options.prune;
    request.schema = options.schema;
    request.targetReference = options.targetReference;
    request.box = options.box;
    if (options.append) request.mode = gdal::OutputMode::append;
    if (options.update) request.mode = gdal::OutputMode::update;
    return request;
}

// Each input gets an output of its own name in the folder, which is made when it is not there.
void Conversion::PrepareFolder() {
    std::set<std::string> names;
    std::error_code error;
    std::filesystem::create_directories(options.output, error);
    for (const Input& input : inputs) {
        if (!input.problem.empty()) continue;
        const std::filesystem::path name = OutputNameOf(input);
        if (!names.insert(name.generic_string()).second)
            throw Failure(exitUsage,
                          "two inputs would have the same output: " + client::SystemTextToUtf8(input.name));
        if (!error && name.has_parent_path())
            std::filesystem::create_directories(options.output / name.parent_path(), error);
    }
    if (error) {
        throw Failure(exitInternal, client::SystemTextToUtf8(options.output) +
                                        ": cannot be made: " + client::SystemTextToUtf8(error.message()));
    }
}

std::vector<Work> Conversion::Works() {
    std::vector<Work> works;
    Work work{CommonRequest(), {}};
    const bool toFolder = IsFolder(options.output);
    if (toFolder && work.request.format.empty()) work.request.format = "gpkg";
    for (size_t i = 0; i < inputs.size(); ++i) {
        if (!inputs[i].problem.empty()) continue;
        work.request.inputs.push_back(InputName(inputs[i].name));
        work.inputs.push_back(i);
        if (!toFolder) continue;
        works.push_back(work);
        works.back().request.nameInFolder = OutputNameOf(inputs[i]);
        work.request.inputs.clear();
        work.inputs.clear();
    }
    if (toFolder || work.inputs.empty()) return works;
    const bool many = inputs.size() > 1 || inputs.front().fromMany || IsDatabase(options.output);
    work.request.manySheets = many || options.append || options.update;
    return {work};
}

// Inputs that nobody need try to read.
void Conversion::TakeProblems() {
    for (const Input& input : inputs) {
        rows.push_back({client::SystemTextToUtf8(client::ShownName(input.name.c_str())), {}});
        if (input.problem.empty()) continue;
        rows.back().sheet.reason = input.problem;
        environment.Error(input.problem);
        exitCode = exitNotMade;
        ++done;
    }
}

// In a process of its own: what the result says to the process that waits for it.
std::string Conversion::Convert(const Work& work) {
    gdal::ConvertResult result;
    const bool single = work.inputs.size() == inputs.size();
    const gdal::ConvertReports reports = {[] { return !client::StopRequested(); },
                                          [&](size_t finished, double part) {
                                              if (single) progress.ShowPart(finished, part);
                                          },
                                          [&](const std::string& text) { environment.Warn(text); }};
    try {
        (*LoadConverter())(work.request, reports, result);
    } catch (const std::exception& error) {
        result.outcome = gdal::ConvertOutcome::outputFailed;
        result.problem = rows[work.inputs.front()].source + ": " + error.what();
    }
    return ResultText(result);
}

int ExitCodeOf(gdal::ConvertOutcome outcome) {
    switch (outcome) {
        case gdal::ConvertOutcome::complete:
        case gdal::ConvertOutcome::closed:
            return exitDone;
        case gdal::ConvertOutcome::incomplete:
            return exitInput;
        case gdal::ConvertOutcome::badRequest:
            return exitUsage;
        case gdal::ConvertOutcome::outputFailed:
            return exitInternal;
        default:
            return exitNotMade;
    }
}

// A failure of ours says more than an input's, and that nothing was made more than that it is incomplete.
int Conversion::WorstOf(int a, int b) const {
    constexpr int ranks[] = {0, 1, 4, 3, 2};  // by exit code
    return ranks[a] > ranks[b] ? a : b;
}

bool Conversion::Take(const Work& work, const gdal::ConvertResult& result) {
    using gdal::ConvertOutcome;
    const ConvertOutcome outcome = result.outcome;
    const bool made = outcome == ConvertOutcome::complete || outcome == ConvertOutcome::incomplete ||
                      outcome == ConvertOutcome::partial || outcome == ConvertOutcome::closed;
    for (size_t i = 0; i < work.inputs.size(); ++i) {
        gdal::SheetReport& sheet = rows[work.inputs[i]].sheet;
        if (i < result.sheets.size()) sheet = result.sheets[i];
        sheet.made |= outcome == ConvertOutcome::closed;  // as far as anybody wanted it
        if (!made && sheet.reason.empty()) {
            sheet.made = false;
            sheet.reason = result.problem;
        }
        ++done;
        bytesDone += inputs[work.inputs[i]].bytes;
    }
    progress.Show(done, bytesDone);
    exitCode = WorstOf(exitCode, ExitCodeOf(outcome));
    // The warnings have said what is incomplete or left out.
    const bool said =
        (outcome == ConvertOutcome::incomplete || outcome == ConvertOutcome::partial) && !environment.quiet;
    const bool isStop = outcome == ConvertOutcome::stopped;
    if (!result.problem.empty() && !said && !(isStop && work.inputs.size() < inputs.size()))
        environment.Error(result.problem);
    stoppedTold |= isStop && work.inputs.size() == inputs.size();
    return outcome != ConvertOutcome::diskFull && outcome != ConvertOutcome::badRequest;
}

void Conversion::TakeBroken(const Work& work, unsigned long process, int signal) {
    std::error_code none;
    const std::filesystem::path folder =
        std::filesystem::path(options.output +
                              (work.request.nameInFolder.empty() ? "" : "/" + work.request.nameInFolder))
            .parent_path();
    std::filesystem::remove_all(folder / gdal::StagingFolderName(process), none);
    const bool stopped = client::StopRequested();
    const std::string reason =
        stopped ? "stopped on request; nothing was made"
                : "the process that converted it was ended by signal " + std::to_string(signal);
    for (const size_t i : work.inputs) rows[i].sheet.reason = reason;
    exitCode = WorstOf(exitCode, stopped ? exitNotMade : exitInternal);
    const bool single = work.inputs.size() > 1 || inputs.size() == 1;
    stoppedTold |= stopped && single;
    const std::string name =
        single ? client::SystemTextToUtf8(options.output) : rows[work.inputs.front()].source;
    if (!stopped || single) environment.Error(name + ": " + reason);
}

int Conversion::Conclude() {
    size_t made = 0;
    for (ReportRow& row : rows) {
        if (row.sheet.made) ++made;
        if (row.sheet.made || !row.sheet.reason.empty()) continue;
        row.sheet.reason =
            client::StopRequested() ? "stopped on request" : "not tried, for the run ended before";
        exitCode = WorstOf(exitCode, exitNotMade);
    }
    if (!options.report.empty()) WriteReport(options.report, rows, options.parcels);
    const std::string counts =
        std::to_string(made) + " of " + std::to_string(rows.size()) + " maps were made";
    if (client::StopRequested() && !stoppedTold) {
        environment.Error("stopped on request; " + counts);
    } else if (rows.size() > 1 && made < rows.size()) {
        environment.Error(counts);
    }
    return exitCode;
}

int Conversion::Run() {
    Check();
    if (IsFolder(options.output)) PrepareFolder();
    TakeProblems();
    if (exitCode != exitDone && !GoesOn()) return exitCode;
    const std::vector<Work> works = Works();
    LoadConverter();
    Jobs jobs;
    jobs.work = [&](size_t i) { return Convert(works[i]); };
    jobs.done = [&](size_t i, const std::string& told) { return Take(works[i], ResultOf(told)); };
    jobs.broken = [&](size_t i, unsigned long process, int signal) { TakeBroken(works[i], process, signal); };
    jobs.stopRequested = [] { return client::StopRequested(); };
    RunJobs(works.size(), options.jobs, jobs);
    return Conclude();
}

}  // namespace

int RunConversion(const ConvertOptions& options, Environment& environment) {
    return Conversion(options, environment).Run();
}

}  // namespace vemrado::tools
