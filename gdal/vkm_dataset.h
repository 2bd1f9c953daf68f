// An opened VKM file, or several that read as one.

#pragma once

#include <gdal_priv.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "parcels.h"
#include "spooled_input.h"
#include "vkm_layer.h"

namespace vemrado::gdal {

// What the open options and their defaults come to.
struct OpenSettings {
    client::Encoding encoding = client::Encoding::windows1250;
    bool guessEncoding = false;  // from the starts of the files
    int axisOrientation = 128;
    std::string dataDirectory;  // holds VKMSym; empty: no styles
    std::optional<OGRSpatialReference> reference;
    map::AngleUnit angleUnit = map::AngleUnit::gon;  // of rotations in the file
    bool splitByCode = true;
    bool parcels = false;
    map::ParcelLayers parcelLayers;
    bool withSourceField = false;
};

class VkmDataset : public GDALDataset {
  public:
    // Null when a file cannot be used, which is reported to GDAL.
    static std::unique_ptr<VkmDataset> Open(const std::vector<std::string>& files,
                                            const OpenSettings& settings);

    VkmDataset() = default;
    ~VkmDataset() override;

    int GetLayerCount() override { return static_cast<int>(layers.size()); }
    OGRLayer* GetLayer(int index) override;
    int TestCapability(const char*) override { return FALSE; }

    // Where the symbology of the styles lies; empty: none.
    const std::string& DataDirectory() const { return state.dataDirectory; }
    // Of the first file.
    double MapScale() const { return mapScale; }
    int AxisOrientation() const { return state.source.axisOrientation; }
    // What reading found in each file.
    const std::vector<FileState>& FileStates() const { return state.source.states; }
    // Asked between the batches of every reading; once it says true the reading ends as a failed one.
    void StopWhen(std::function<bool()> requested) { state.source.stopRequested = std::move(requested); }

  private:
    bool AddFile(const std::string& file, client::EncodingEvidence& evidence);

    SharedState state;
    std::vector<std::unique_ptr<OGRLayer>> layers;
    double mapScale = 1000.0;
    std::optional<SpooledInput> spooledInput;
};

}  // namespace vemrado::gdal
