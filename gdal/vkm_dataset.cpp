#include "vkm_dataset.h"

#include <cpl_string.h>

#include <utility>

#include "module_session.h"
#include "parcel_layer.h"
#include "virtual_files.h"

namespace vemrado::gdal {

VkmDataset::VkmDataset(const OpenSettings& settings) {
    state.source.encoding = settings.encoding;
    state.source.axisOrientation = settings.axisOrientation;
    state.source.angleUnit = settings.angleUnit;
    state.source.splitByCode = settings.splitByCode;
    state.source.withSourceField = settings.withSourceField;
    state.dataDirectory = settings.dataDirectory;
}

std::unique_ptr<VkmDataset> VkmDataset::Open(const std::string& file, const OpenSettings& settings) {
    std::unique_ptr<VkmDataset> dataset(new VkmDataset(settings));
    Source& source = dataset->state.source;
    const bool isStandardInput = file == standardInputFile;
    if (isStandardInput && dataset->spooledInput.emplace().Path().empty()) return nullptr;
    source.files = {isStandardInput ? dataset->spooledInput->Path() : file};
    source.names = {isStandardInput ? "standard input" : file};
    source.states.resize(1);
    client::EncodingEvidence evidence;
    if (!CheckMapFile(source.files.front(), source.names.front(), evidence)) return nullptr;
    source.states.front().checked = true;
    if (settings.guessEncoding) source.encoding = evidence.Guess().value_or(settings.encoding);
    const std::optional<Header> header = ReadHeader(source, 0);
    if (!header) return nullptr;
    dataset->TellHeader(*header);
    dataset->AddLayers(settings);
    return dataset;
}

// Of thousands of maps only as many are opened as it takes to find one that can be read; all of them where
// their encoding is to be guessed.
std::unique_ptr<VkmDataset> VkmDataset::OpenCollection(const std::vector<CollectedMap>& maps,
                                                       const OpenSettings& settings) {
    std::unique_ptr<VkmDataset> dataset(new VkmDataset(settings));
    Source& source = dataset->state.source;
    source.keepGoing = true;
    client::EncodingEvidence evidence;
    std::optional<Header> header;
    for (const auto& [file, totals] : maps) {
        source.files.push_back(file);
        source.names.push_back(file);
        FileState& state = source.states.emplace_back();
        state.totals = totals;
        if (header && !settings.guessEncoding) continue;
        const ModuleSession failuresAreWarnings;
        state.checked = true;
        state.unusable = !CheckMapFile(file, file, evidence);
        if (state.unusable || header) continue;
        header = ReadHeader(source, source.files.size() - 1);
        state.unusable = !header;
        if (header) dataset->TellHeader({header->mapScale, header->relative, {}, {}});
    }
    if (!header) {
        CPLError(CE_Failure, CPLE_OpenFailed, "%s: none of the maps can be read", maps.front().file.c_str());
        return nullptr;
    }
    if (settings.guessEncoding) source.encoding = evidence.Guess().value_or(settings.encoding);
    if (dataset->state.KnowsFiles()) dataset->state.AddUp();
    dataset->AddLayers(settings);
    return dataset;
}

void VkmDataset::TellHeader(const Header& header) {
    SetMetadataItem("MAP_SCALE", CPLString().Printf("%.15g", header.mapScale));
    SetMetadataItem("RELATIVE_COORDINATES", header.relative ? "YES" : "NO");
    if (!header.date.empty()) SetMetadataItem("DATE", header.date.c_str());
    if (!header.title.empty()) SetMetadataItem("TITLE", header.title.c_str());
}

void VkmDataset::AddLayers(const OpenSettings& settings) {
    const OGRSpatialReference* reference = settings.reference ? &*settings.reference : nullptr;
    for (const LayerKind kind : {lineLayer, pointLayer, textLayer})
        layers.push_back(std::make_unique<VkmLayer>(state, kind, reference));
    if (settings.parcels)
        layers.push_back(std::make_unique<ParcelLayer>(state.source, settings.parcelLayers, reference));
}

VkmDataset::~VkmDataset() {
    layers.clear();
}

OGRLayer* VkmDataset::GetLayer(int index) {
    if (index < 0 || index >= GetLayerCount()) return nullptr;
    return layers[static_cast<size_t>(index)].get();
}

}  // namespace vemrado::gdal
