#include "vkm_dataset.h"

#include <cpl_string.h>

#include <utility>

#include "parcel_layer.h"
#include "virtual_files.h"

namespace vemrado::gdal {

std::unique_ptr<VkmDataset> VkmDataset::Open(const std::vector<std::string>& files,
                                             const OpenSettings& settings) {
    auto dataset = std::make_unique<VkmDataset>();
    SharedState& state = dataset->state;
    state.source.encoding = settings.encoding;
    state.source.axisOrientation = settings.axisOrientation;
    state.source.angleUnit = settings.angleUnit;
    state.source.splitByCode = settings.splitByCode;
    state.source.withSourceField = settings.withSourceField;
    state.dataDirectory = settings.dataDirectory;
    client::EncodingEvidence evidence;
    for (const std::string& file : files) {
        if (!dataset->AddFile(file, evidence)) return nullptr;
    }
    if (settings.guessEncoding) state.source.encoding = evidence.Guess().value_or(settings.encoding);
    const OGRSpatialReference* layerReference = settings.reference ? &*settings.reference : nullptr;
    for (const LayerKind kind : {lineLayer, pointLayer, textLayer})
        dataset->layers.push_back(std::make_unique<VkmLayer>(state, kind, layerReference));
    if (settings.parcels) {
        dataset->layers.push_back(
            std::make_unique<ParcelLayer>(state.source, settings.parcelLayers, layerReference));
    }
    return dataset;
}

VkmDataset::~VkmDataset() {
    layers.clear();
}

OGRLayer* VkmDataset::GetLayer(int index) {
    if (index < 0 || index >= GetLayerCount()) return nullptr;
    return layers[static_cast<size_t>(index)].get();
}

bool VkmDataset::AddFile(const std::string& file, client::EncodingEvidence& evidence) {
    Source& source = state.source;
    const bool isStandardInput = file == standardInputFile;
    if (isStandardInput && spooledInput.emplace().Path().empty()) return false;
    source.files.push_back(isStandardInput ? spooledInput->Path() : file);
    source.names.push_back(isStandardInput ? "standard input" : file);
    source.states.emplace_back();
    if (!CheckMapFile(source.files.back(), source.names.back(), evidence)) return false;
    const std::optional<Header> header = ReadHeader(source, source.files.size() - 1);
    if (!header) return false;
    if (source.files.size() == 1) {
        mapScale = header->mapScale;
        SetMetadataItem("MAP_SCALE", CPLString().Printf("%.15g", header->mapScale));
        SetMetadataItem("RELATIVE_COORDINATES", header->relative ? "YES" : "NO");
    }
    return true;
}

}  // namespace vemrado::gdal
