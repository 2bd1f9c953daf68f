#include "vkm_dataset.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <utility>

#include "parcel_layer.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

constexpr const char* standardInput = "/vsistdin/";

using File = std::unique_ptr<VSILFILE, decltype(&VSIFCloseL)>;

bool Copy(VSILFILE* from, VSILFILE* to) {
    std::vector<char> block(1 << 18);
    while (const size_t got = VSIFReadL(block.data(), 1, block.size(), from)) {
        if (VSIFWriteL(block.data(), 1, got, to) != got) return false;
    }
    return true;
}

}  // namespace

std::unique_ptr<VkmDataset> VkmDataset::Open(const std::vector<std::string>& files,
                                             const OpenSettings& settings) {
    auto dataset = std::make_unique<VkmDataset>();
    SharedState& state = dataset->state;
    state.source.encoding = settings.encoding;
    state.source.axisOrientation = settings.axisOrientation;
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
    if (!spooledInput.empty()) VSIUnlink(spooledInput.c_str());
}

OGRLayer* VkmDataset::GetLayer(int index) {
    if (index < 0 || index >= GetLayerCount()) return nullptr;
    return layers[static_cast<size_t>(index)].get();
}

bool VkmDataset::AddFile(const std::string& file, client::EncodingEvidence& evidence) {
    Source& source = state.source;
    const bool isStandardInput = file == standardInput;
    if (isStandardInput && !SpoolStandardInput()) return false;
    source.files.push_back(isStandardInput ? spooledInput : file);
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

// Standard input comes once, the layers read it once each.
bool VkmDataset::SpoolStandardInput() {
    spooledInput = CPLGenerateTempFilename("vkm");
    const File input(VSIFOpenL(standardInput, "rb"), VSIFCloseL);
    File spool(VSIFOpenL(spooledInput.c_str(), "wb"), VSIFCloseL);
    const bool copied = input && spool && Copy(input.get(), spool.get());
    const bool closed = spool && VSIFCloseL(spool.release()) == 0;
    if (!copied || !closed)
        CPLError(CE_Failure, CPLE_FileIO, "standard input cannot be copied to %s", spooledInput.c_str());
    return copied && closed;
}

}  // namespace vemrado::gdal
