// An opened VKM file, or several that read as one.

#pragma once

#include <gdal_priv.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "map_collection.h"
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
    // Null when the file cannot be used, which is reported to GDAL.
    static std::unique_ptr<VkmDataset> Open(const std::string& file, const OpenSettings& settings);
    // Maps that cannot be used are left out, with a warning when they are met; null when there are no others.
    static std::unique_ptr<VkmDataset> OpenCollection(const std::vector<CollectedMap>& maps,
                                                      const OpenSettings& settings);

    ~VkmDataset() override;

    int GetLayerCount() override { return static_cast<int>(layers.size()); }
    OGRLayer* GetLayer(int index) override;
    int TestCapability(const char*) override { return FALSE; }

  private:
    explicit VkmDataset(const OpenSettings& settings);
    void AddLayers(const OpenSettings& settings);
    void TellHeader(const Header& header);

    SharedState state;
    std::vector<std::unique_ptr<OGRLayer>> layers;
    std::optional<SpooledInput> spooledInput;
};

}  // namespace vemrado::gdal
