// The layer of parcel polygons, built when it is first read.

#pragma once

#include <vector>

#include "map_layer.h"
#include "parcels.h"

namespace vemrado::gdal {

class ParcelLayer : public MapLayer {
  public:
    // The source must outlive the layer.
    ParcelLayer(Source& source, const map::ParcelLayers& layers, const OGRSpatialReference* reference);

    void ResetReading() override { next = 0; }
    OGRFeature* GetNextFeature() override;
    OGRErr SetNextByIndex(GIntBig index) override;
    OGRFeature* GetFeature(GIntBig identifier) override;
    GIntBig GetFeatureCount(int force) override;
    using MapLayer::GetExtent;
    OGRErr GetExtent(OGREnvelope* extent, int force) override;
    int TestCapability(const char* capability) override;

  private:
    const std::vector<FileParcel>& Parcels();
    OGRFeature* Make(size_t parcel);

    Source& source;
    map::ParcelLayers layers;
    bool built = false;
    std::vector<FileParcel> parcels;
    size_t next = 0;
};

}  // namespace vemrado::gdal
