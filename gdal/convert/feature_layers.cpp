#include "feature_layers.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <memory>

#include "layer_styles.h"
#include "output_format.h"
#include "staged_output.h"

namespace vemrado::gdal {
namespace {

// The bytes of a layer as a dataset; they must outlive it.
class LayerSource {
  public:
    explicit LayerSource(const FeatureLayer& layer) : name("/vsimem/vkm-" + layer.name + ".geojson") {
        auto* bytes = const_cast<GByte*>(reinterpret_cast<const GByte*>(layer.geoJson.data()));
        VSIFCloseL(VSIFileFromMemBuffer(name.c_str(), bytes, layer.geoJson.size(), FALSE));
        dataset.reset(GDALDataset::Open(name.c_str(), GDAL_OF_VECTOR));
    }
    LayerSource(const LayerSource&) = delete;
    LayerSource& operator=(const LayerSource&) = delete;
    ~LayerSource() {
        dataset.reset();
        VSIUnlink(name.c_str());
    }

    GDALDatasetH Handle() const { return dataset.get(); }

  private:
    std::string name;
    GDALDatasetUniquePtr dataset;
};

bool Translate(const FeatureLayer& layer, const std::string& path, const OutputFormat& format, bool append) {
    const LayerSource source(layer);
    if (source.Handle() == nullptr) return false;
    CPLStringList arguments;
    arguments.AddString("-f");
    arguments.AddString(format.driver->GetDescription());
    arguments.AddString("-nln");
    arguments.AddString(layer.name.c_str());
    if (append) arguments.AddString("-update");
    const std::unique_ptr<GDALVectorTranslateOptions, void (*)(GDALVectorTranslateOptions*)> options(
        GDALVectorTranslateOptionsNew(arguments.List(), nullptr), GDALVectorTranslateOptionsFree);
    GDALDatasetH handle = source.Handle();
    GDALDatasetH made = GDALVectorTranslate(path.c_str(), nullptr, 1, &handle, options.get(), nullptr);
    if (made == nullptr) return false;
    GDALClose(made);
    return true;
}

bool AddStyles(const std::vector<FeatureLayer>& layers, const std::string& path) {
    const GDALDatasetUniquePtr made(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
    if (!made) return false;
    for (const FeatureLayer& layer : layers) {
        OGRLayer* styled = made->GetLayerByName(layer.name.c_str());
        if (styled != nullptr && !AddStyle(*made, *styled, layer.qml, "By kind")) return false;
    }
    return true;
}

bool Write(const std::vector<FeatureLayer>& layers, const std::filesystem::path& output,
           const OutputFormat& format, StagedOutput& staged) {
    const bool one = format.layout == Layout::container || layers.size() == 1;
    for (size_t i = 0; i < layers.size(); ++i) {
        const std::string stem = output.stem().string() + (one ? "" : "_" + layers[i].name);
        const std::string path = staged.PathOf(stem + output.extension().string());
        if (!Translate(layers[i], path, format, one && i > 0)) return false;
    }
    const bool isGeoPackage = std::string(format.driver->GetDescription()) == "GPKG";
    return !isGeoPackage || AddStyles(layers, staged.PathOf(output.filename().string()));
}

void WriteFeatures(const std::vector<FeatureLayer>& layers, const std::string& output,
                   ConvertResult& result) {
    const std::filesystem::path path(output);
    const std::string extension = path.extension().string();
    const OutputFormat format = FindFormat(extension.empty() ? extension : extension.substr(1));
    if (format.driver == nullptr) {
        result = {ConvertOutcome::badRequest, output + ": GDAL writes no format of that name", {}};
        return;
    }
    StagedOutput staged(output);
    std::string reason;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CPLErrorReset();
    bool done = staged.Make(reason);
    if (done && !Write(layers, path, format, staged)) {
        done = false;
        reason = CPLGetLastErrorMsg();
    }
    if (!done || !staged.PutInPlace(reason))
        result = {ConvertOutcome::outputFailed, output + ": " + reason, {}};
}

}  // namespace
}  // namespace vemrado::gdal

void VkmWriteFeatures(const std::vector<vemrado::gdal::FeatureLayer>& layers, const std::string& output,
                      vemrado::gdal::ConvertResult& result) {
    GDALAllRegister();
    vemrado::gdal::WriteFeatures(layers, output, result);
}
