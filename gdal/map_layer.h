// What every layer of a VKM file has: a schema and the filters that GDAL keeps.

#pragma once

#include <ogrsf_frmts.h>

#include "element_reader.h"
#include "vkm_features.h"

namespace vemrado::gdal {

class MapLayer : public OGRLayer {
  public:
    OGRFeatureDefn* GetLayerDefn() override { return definition.Get(); }
    OGRErr GetExtent(OGREnvelope* extent, int force) override = 0;
    OGRErr GetExtent(int field, OGREnvelope* extent, int force) override {
        return OGRLayer::GetExtent(field, extent, force);
    }

  protected:
    // A field with the file's name follows the fields when the source wants it.
    MapLayer(const LayerSchema& schema, const Source& from, const OGRSpatialReference* reference)
        : definition(schema, reference) {
        SetDescription(schema.name);
        if (!from.withSourceField) return;
        sourceField = definition.Get()->GetFieldCount();
        definition.AddField({"source", OFTString, "File it comes from"});
    }

    void SetSource(OGRFeature& feature, const std::string& name) const {
        if (sourceField >= 0 && feature.GetDefnRef()->GetFieldDefn(sourceField)->IsIgnored() == 0)
            feature.SetField(sourceField, name.c_str());
    }
    bool Unfiltered() const { return m_poFilterGeom == nullptr && m_poAttrQuery == nullptr; }
    // Whether the filters let the feature through.
    bool Passes(OGRFeature& feature) {
        return (m_poFilterGeom == nullptr || FilterGeometry(feature.GetGeometryRef()) != 0) &&
               (m_poAttrQuery == nullptr || m_poAttrQuery->Evaluate(&feature) != 0);
    }

    Definition definition;
    int sourceField = -1;  // none
};

}  // namespace vemrado::gdal
