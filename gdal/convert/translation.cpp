#include "translation.h"

#include <cpl_string.h>
#include <gdal_utils.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "checked_files.h"
#include "layer_styles.h"

namespace vemrado::gdal {

namespace {

struct FreeOptions {
    void operator()(GDALVectorTranslateOptions* options) const { GDALVectorTranslateOptionsFree(options); }
};
using TranslateOptions = std::unique_ptr<GDALVectorTranslateOptions, FreeOptions>;

// A share of the whole work.
struct Step {
    const std::function<bool(double)>* progress;
    double begin;
    double length;
};

int CPL_STDCALL OnProgress(double done, const char*, void* context) {
    const Step& step = *static_cast<Step*>(context);
    return (*step.progress)(step.begin + done * step.length) ? TRUE : FALSE;
}

// Programs want one type of geometry in a layer; which one is known once the layer was counted.
const char* GeometryTypeOf(OGRLayer& layer) {
    const VkmLayer* lines = dynamic_cast<const VkmLayer*>(&layer);
    if (lines == nullptr || wkbFlatten(layer.GetGeomType()) != wkbUnknown) return nullptr;
    return lines->HasMultiLines() ? "MULTILINESTRING" : "LINESTRING";
}

bool Closed(GDALDatasetUniquePtr output) {
    output->FlushCache(false);
    const bool clean = CPLGetLastErrorType() < CE_Failure;
    output.reset();
    return clean && CPLGetLastErrorType() < CE_Failure;
}

}  // namespace

Translation::Translation(VkmDataset& source, std::vector<OGRLayer*> wanted, OutputFormat into,
                         std::function<bool(double)> report)
    : map(source), layers(std::move(wanted)), format(into), progress(std::move(report)) {
    map.StopWhen([this] { return !progress(ShareDone()); });
}

Translation::~Translation() {
    map.StopWhen({});
}

bool Translation::Prepare() {
    GIntBig all = 0;
    for (OGRLayer* layer : layers) {
        const GIntBig count = layer->GetFeatureCount(TRUE);
        if (count < 0) return false;
        all += count;
    }
    featuresOfAll = std::max<GIntBig>(all, 1);
    return true;
}

Translation::Output Translation::Create(const std::string& path) const {
    // Databases keep files of their own beside it and look at every write themselves.
    const char* driver = format.driver->GetDescription();
    const bool isDatabase = EQUAL(driver, "GPKG") || EQUAL(driver, "SQLite");
    const std::string name = isDatabase ? path : CheckedPath(path);
    return Output(format.driver->Create(name.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
}

bool Translation::Copy(GDALDataset& output, OGRLayer& layer) {
    CPLStringList arguments;
    for (const std::string& argument : LosslessArguments(*format.driver))
        arguments.AddString(argument.c_str());
    if (const char* type = GeometryTypeOf(layer)) {
        arguments.AddString("-nlt");
        arguments.AddString(type);
    }
    arguments.AddString(layer.GetName());
    const TranslateOptions options(GDALVectorTranslateOptionsNew(arguments.List(), nullptr));
    if (options == nullptr) return false;
    const GIntBig count = layer.GetFeatureCount(TRUE);
    Step step = {&progress, ShareDone(), static_cast<double>(count) / static_cast<double>(featuresOfAll)};
    GDALVectorTranslateOptionsSetProgress(options.get(), OnProgress, &step);
    GDALDatasetH source = GDALDataset::ToHandle(&map);
    int usageError = FALSE;
    featuresDone += count;
    return GDALVectorTranslate(nullptr, GDALDataset::ToHandle(&output), 1, &source, options.get(),
                               &usageError) != nullptr;
}

bool Translation::WriteContainer(const std::string& path) {
    Output output = Create(path);
    if (output == nullptr) return false;
    for (OGRLayer* layer : layers) {
        if (!Copy(*output, *layer)) return false;
    }
    const bool isGeoPackage = EQUAL(format.driver->GetDescription(), "GPKG");
    if (isGeoPackage && !AddLayerStyles(*output, map, layers)) return false;
    return Closed(std::move(output));
}

bool Translation::WriteLayer(const std::string& path, OGRLayer& layer) {
    Output output = Create(path);
    return output != nullptr && Copy(*output, layer) && Closed(std::move(output));
}

bool Translation::WriteMerged(const std::string& path) {
    Output output = Create(path);
    if (output == nullptr) return false;
    OGRLayer* target = output->CreateLayer("entities", nullptr, wkbUnknown, nullptr);
    if (target == nullptr) return false;
    for (OGRLayer* layer : layers) {
        if (!CopyMerged(*target, *layer)) return false;
    }
    return Closed(std::move(output));
}

bool Translation::CopyMerged(OGRLayer& target, OGRLayer& layer) {
    constexpr GIntBig between = 1024;
    const int sourceLayer = layer.GetLayerDefn()->GetFieldIndex("layer");
    const int targetLayer = target.GetLayerDefn()->GetFieldIndex("Layer");
    layer.ResetReading();
    while (const OGRFeatureUniquePtr feature = OGRFeatureUniquePtr(layer.GetNextFeature())) {
        OGRFeature copy(target.GetLayerDefn());
        copy.SetGeometryDirectly(feature->StealGeometry());
        copy.SetStyleString(feature->GetStyleString());
        if (sourceLayer >= 0 && targetLayer >= 0)
            copy.SetField(targetLayer, feature->GetFieldAsString(sourceLayer));
        if (target.CreateFeature(&copy) != OGRERR_NONE) return false;
        const bool report = ++featuresDone % between == 0;
        if (report && !progress(ShareDone())) return false;
    }
    return true;
}

}  // namespace vemrado::gdal
