// The layer of parcel polygons, built when it is first read.

#pragma once

#include <ogrsf_frmts.h>

#include <memory>
#include <vector>

#include "parcels.h"
#include "vkm_features.h"

namespace vemrado::gdal {

class ParcelLayer : public OGRLayer {
  public:
    // The source must outlive the layer.
    ParcelLayer(Source& source, const ParcelLayers& layers, const OGRSpatialReference* reference);

    void ResetReading() override { next = 0; }
    OGRFeature* GetNextFeature() override;
    OGRErr SetNextByIndex(GIntBig index) override;
    OGRFeature* GetFeature(GIntBig identifier) override;
    OGRFeatureDefn* GetLayerDefn() override { return definition.Get(); }
    GIntBig GetFeatureCount(int force) override;
    OGRErr GetExtent(OGREnvelope* extent, int force) override;
    OGRErr GetExtent(int field, OGREnvelope* extent, int force) override {
        return OGRLayer::GetExtent(field, extent, force);
    }
    int TestCapability(const char* capability) override;

  private:
    const std::vector<Parcel>& Parcels();
    OGRFeature* Make(size_t parcel);
    bool Unfiltered() const { return m_poFilterGeom == nullptr && m_poAttrQuery == nullptr; }

    Source& source;
    ParcelLayers layers;
    Definition definition;
    bool built = false;
    std::vector<Parcel> parcels;
    size_t next = 0;
};

}  // namespace vemrado::gdal
