#include "converter.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <optional>
#include <set>

#include "checked_files.h"
#include "client/system.h"
#include "driver.h"
#include "output_format.h"
#include "staged_output.h"
#include "translation.h"
#include "virtual_files.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

namespace {

// What GDAL reports during a conversion: warnings go on, each once, and the first failure is kept.
class Diagnostics {
  public:
    explicit Diagnostics(const ConvertReports& to) : reports(to) { CPLPushErrorHandlerEx(OnError, this); }
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;
    ~Diagnostics() { CPLPopErrorHandler(); }

    const std::string& Failure() const { return failure; }
    // Everything that concerns the inputs was told; an output may complain of every single value.
    void InputsAreRead() { warningsLeft = 10; }

  private:
    static void CPL_STDCALL OnError(CPLErr severity, CPLErrorNum, const char* text) {
        Diagnostics& self = *static_cast<Diagnostics*>(CPLGetErrorHandlerUserData());
        if (severity == CE_Warning && self.warningsLeft == 0) return;
        const std::string sentence = Sentence(text);
        if (severity >= CE_Failure && self.failure.empty()) self.failure = sentence;
        if (severity == CE_Warning && self.told.insert(sentence).second) self.Warn(sentence);
    }

    // Values in full make some messages endless.
    static std::string Sentence(std::string text) {
        constexpr size_t longest = 300;
        text.resize(std::min(text.size(), text.find_last_not_of(" \r\n") + 1));
        if (text.size() <= longest) return text;
        size_t end = longest;
        while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not inside a character
        return text.substr(0, end) + " ...";
    }

    void Warn(const std::string& sentence) {
        if (warningsLeft > 0 && --warningsLeft == 0) {
            reports.warn("further warnings are left out");
        } else {
            reports.warn(sentence);
        }
    }

    const ConvertReports& reports;
    int warningsLeft = -1;  // negative: as many as come
    std::set<std::string> told;
    std::string failure;
};

struct Problem {
    ConvertOutcome outcome;
    std::string text;
};

// The layers to convert; a problem when one of the names is not there.
std::optional<Problem> ChooseLayers(VkmDataset& map, const std::vector<std::string>& names,
                                    std::vector<OGRLayer*>& layers) {
    for (int i = 0; names.empty() && i < map.GetLayerCount(); ++i) layers.push_back(map.GetLayer(i));
    for (const std::string& name : names) {
        OGRLayer* layer = map.GetLayerByName(name.c_str());
        if (layer == nullptr) return Problem{ConvertOutcome::badRequest, "there is no layer '" + name + "'"};
        if (std::ranges::find(layers, layer) == layers.end()) layers.push_back(layer);
    }
    return std::nullopt;
}

// Name of a layer's file: town_lines.shp for town.shp.
std::string NameOfLayer(const std::string& output, OGRLayer& layer) {
    const std::string base = CPLGetBasename(output.c_str());
    return CPLFormFilename(nullptr, (base + "_" + layer.GetName()).c_str(), CPLGetExtension(output.c_str()));
}

// What a conversion works on.
struct Work {
    VkmDataset& map;
    OutputFormat format;
    std::string output;
    std::vector<OGRLayer*> layers;
    bool stopped = false;
};

bool WriteAll(const Work& work, Translation& translation, const StagedOutput& staged) {
    const std::string& output = work.output;
    const std::string whole = staged.PathOf(CPLGetFilename(output.c_str()));
    if (work.format.layout == Layout::container) return translation.WriteContainer(whole);
    if (work.format.layout == Layout::merged) return translation.WriteMerged(whole);
    if (work.layers.size() == 1) return translation.WriteLayer(whole, *work.layers.front());
    return std::ranges::all_of(work.layers, [&](OGRLayer* layer) {
        return translation.WriteLayer(staged.PathOf(NameOfLayer(output, *layer)), *layer);
    });
}

std::string OutputOf(const ConvertRequest& request, const OutputFormat& format) {
    if (!request.outputIsFolder) return client::FollowLinks(request.output);
    return CPLFormFilename(request.output.c_str(), CPLGetBasename(request.inputs.front().c_str()),
                           format.extension.c_str());
}

bool InputFailed(const VkmDataset& map) {
    return std::ranges::any_of(map.FileStates(), [](const FileState& file) { return file.failed; });
}

std::optional<Problem> Write(Work& work, const ConvertReports& reports, Diagnostics& diagnostics) {
    const std::string& output = work.output;
    const std::string failed = output + ": cannot be written: ";
    StagedOutput staged(output);
    std::string reason;
    ForgetFailedWrites();
    if (!staged.Make(reason)) return Problem{ConvertOutcome::outputFailed, failed + reason};
    Translation translation(work.map, work.layers, work.format, [&](double share) {
        work.stopped = work.stopped || !reports.progress(share);
        return !work.stopped;
    });
    bool written = translation.Prepare();
    diagnostics.InputsAreRead();
    written = written && WriteAll(work, translation, staged);
    if (work.stopped)
        return Problem{ConvertOutcome::stopped, output + ": stopped on request; nothing was made"};
    if (InputFailed(work.map)) return Problem{ConvertOutcome::inputFailed, diagnostics.Failure()};
    if (!FailedWrite().empty()) return Problem{ConvertOutcome::outputFailed, failed + FailedWrite()};
    if (!written || !diagnostics.Failure().empty())
        return Problem{ConvertOutcome::outputFailed, failed + diagnostics.Failure()};
    if (!staged.PutInPlace(reason)) return Problem{ConvertOutcome::outputFailed, reason};
    return std::nullopt;
}

std::optional<Problem> Convert(const ConvertRequest& request, const ConvertReports& reports) {
    Diagnostics diagnostics(reports);
    const std::string name =
        !request.format.empty() ? request.format : std::string(CPLGetExtension(request.output.c_str()));
    const OutputFormat format = FindFormat(name);
    if (format.driver == nullptr)
        return Problem{ConvertOutcome::badRequest, request.output + ": GDAL writes no format '" + name + "'"};
    CPLStringList options;
    for (const std::string& option : request.openOptions) options.AddString(option.c_str());
    OpenSettings settings;
    if (!ReadOpenOptions(options.List(), settings))
        return Problem{ConvertOutcome::badRequest, diagnostics.Failure()};
    const std::unique_ptr<VkmDataset> map = VkmDataset::Open(request.inputs, settings);
    if (map == nullptr) return Problem{ConvertOutcome::inputFailed, diagnostics.Failure()};

    Work work{*map, format, OutputOf(request, format), {}};
    const client::FileKind kind = client::KindOfFile(work.output);
    if (kind != client::FileKind::none && kind != client::FileKind::regular)
        return Problem{ConvertOutcome::badRequest,
                       work.output + ": cannot be written: it is no regular file"};
    if (auto problem = ChooseLayers(*map, request.layers, work.layers)) return problem;
    if (auto problem = Write(work, reports, diagnostics)) return problem;
    for (size_t i = 0; i < request.inputs.size(); ++i) {
        if (map->FileStates()[i].truncated)
            return Problem{ConvertOutcome::incomplete, request.inputs[i] + ": its last element is lost"};
    }
    return std::nullopt;
}

}  // namespace

}  // namespace vemrado::gdal

void VkmConvert(const vemrado::gdal::ConvertRequest& request, const vemrado::gdal::ConvertReports& reports,
                vemrado::gdal::ConvertResult& result) {
    vemrado::gdal::RegisterDriver();
    GDALAllRegister();
    if (const auto problem = vemrado::gdal::Convert(request, reports)) {
        result.outcome = problem->outcome;
        result.problem = problem->text;
    }
}

const FrameworkFileProvider* VkmVirtualFiles() {
    return &vemrado::gdal::virtualFiles;
}
