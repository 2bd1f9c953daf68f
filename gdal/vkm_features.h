// The schemas of the layers, and features made from the records of a batch.

#pragma once

#include <ogr_feature.h>

#include <memory>
#include <string>

#include "elements.h"

namespace vemrado::gdal {

class Styles;

// A layer's definition with its reference system; OGR counts its users.
class Definition {
  public:
    Definition(const char* layerName, OGRwkbGeometryType geometryType, const OGRSpatialReference* reference);
    Definition(const Definition&) = delete;
    Definition& operator=(const Definition&) = delete;
    ~Definition();

    void AddField(const char* name, OGRFieldType type, const char* comment);

    OGRFeatureDefn* Get() const { return definition; }
    OGRSpatialReference* Reference() const { return reference; }

  private:
    OGRFeatureDefn* definition;
    OGRSpatialReference* reference = nullptr;  // owned by the definition
};

void AddLineFields(Definition& definition);
void AddPointFields(Definition& definition);
void AddTextFields(Definition& definition);

// What a feature takes from the state of its layer.
struct FeatureNeeds {
    bool geometry = true;
    const Styles* styles = nullptr;  // null: features get none
};

// The features without identifier and source. Fields that are ignored stay unset.
OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const LineRecord& line,
                        FeatureNeeds needs);
OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const PointRecord& point,
                        FeatureNeeds needs);
OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const TextRecord& text,
                        FeatureNeeds needs);

}  // namespace vemrado::gdal
