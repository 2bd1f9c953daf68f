#include "options.h"

#include <algorithm>

#include "client/axis_orientation.h"
#include "client/data_directory.h"
#include "client/system.h"
#include "failure.h"

namespace vemrado::capi {
namespace {

constexpr int eastAndNorth = 128;

// The library may lie some folders deeper than a program.
std::string SampleSymbology() {
    std::string place = client::LibraryPath();
    constexpr int maximumDepth = 4;
    for (int depth = 0; depth < maximumDepth && !place.empty(); ++depth) {
        std::string found = client::FindSampleSymbology(place);
        if (!found.empty()) return found;
        const size_t separator = place.find_last_of("/\\");
        place.resize(separator == std::string::npos ? 0 : separator);
    }
    return {};
}

vkm_options Defaults() {
    vkm_options defaults = {};
    defaults.size = sizeof defaults;
    defaults.split_by_code = 1;
    defaults.parcel_layer = 1;
    defaults.number_layer = 2;
    defaults.batch_rows = 65536;
    return defaults;
}

void TakeEncoding(const char* name, Options& options) {
    if (name == nullptr) return;
    const auto found = client::FindEncoding(name);
    if (!found) throw Failure(VKM_ERROR_ARGUMENT, std::string("there is no encoding '") + name + "'");
    options.encoding = *found;
}

void TakeOrientation(const char* name, Options& options) {
    if (name == nullptr) return;
    const auto found = client::FindAxisOrientation(name);
    if (!found) throw Failure(VKM_ERROR_ARGUMENT, std::string("there is no axis orientation '") + name + "'");
    options.axisOrientation = *found;
}

void TakeSymbology(const char* directory, Options& options) {
    options.dataDirectory = directory != nullptr ? directory : SampleSymbology();
    options.withSymbology = !options.dataDirectory.empty();
    if (directory == nullptr || !options.withSymbology) return;
    if (client::KindOfFile(options.dataDirectory) != client::FileKind::directory)
        throw Failure(VKM_ERROR_OPEN, "there is no such directory of a symbology", options.dataDirectory);
}

// The text goes into JSON as it stands.
void TakeCrs(const char* crs, Options& options) {
    if (crs == nullptr) {
        if (options.axisOrientation == eastAndNorth) options.crs = "EPSG:5514";
        return;
    }
    options.crs = crs;
    const auto isPlain = [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != '"' && c != '\\'; };
    Require(*crs == '{' || std::ranges::all_of(options.crs, isPlain),
            "crs: it is neither an authority's code nor PROJJSON");
}

}  // namespace

Options CopyOptions(const vkm_options* callers) {
    Options options;
    Require(callers == nullptr || SaysSize(callers->size),
            "the options do not say their size: vkm_options_init");
    const vkm_options known = callers != nullptr ? KnownPart(*callers, Defaults()) : Defaults();
    TakeEncoding(known.encoding, options);
    TakeOrientation(known.orientation, options);
    TakeSymbology(known.symbology, options);
    TakeCrs(known.crs, options);
    Require(known.layers != nullptr || known.layer_count == 0, "layers: null, but a count");
    if (known.layers != nullptr) options.layers.assign(known.layers, known.layers + known.layer_count);
    options.splitByCode = known.split_by_code != 0;
    options.parcelLayer = known.parcel_layer;
    options.numberLayer = known.number_layer;
    Require(known.batch_rows > 0, "batch_rows: a batch has at least one row");
    options.batchRows = known.batch_rows;
    Require(known.angle_unit >= VKM_GON && known.angle_unit <= VKM_RADIAN,
            "angle_unit: there is no such unit");
    options.angleUnit = static_cast<map::AngleUnit>(known.angle_unit);
    options.onWarning = known.on_warning;
    options.onProgress = known.on_progress;
    options.callbackContext = known.callback_context;
    return options;
}

void TellWarning(const Options& options, const std::string& reason, const std::string& file, uint64_t line,
                 vkm_status status) {
    if (options.onWarning == nullptr) return;
    const Failure warning(status, reason, file, line);
    options.onWarning(options.callbackContext, &warning.Error());
}

void TellProgress(const Options& options, double part, const std::string& file) {
    if (options.onProgress == nullptr) return;
    if (options.onProgress(options.callbackContext, part) != 0)
        throw Failure(VKM_ERROR_STOPPED, "stopped by the caller", file);
}

}  // namespace vemrado::capi

void vkm_options_init(vkm_options* options) {
    if (options != nullptr) *options = vemrado::capi::Defaults();
}
