// The schemas of the layers, and features made from the records of a batch.

#pragma once

#include <ogr_feature.h>

#include <span>

#include "elements.h"

namespace vemrado::gdal {

class Styles;

struct FieldSchema {
    const char* name;
    OGRFieldType type;
    const char* comment;
};

struct LayerSchema {
    const char* name;
    OGRwkbGeometryType geometryType;
    std::span<const FieldSchema> fields;
};

// A layer's definition with its reference system; OGR counts its users.
class Definition {
  public:
    Definition(const LayerSchema& schema, const OGRSpatialReference* reference);
    Definition(const Definition&) = delete;
    Definition& operator=(const Definition&) = delete;
    ~Definition();

    void AddField(const FieldSchema& field);

    OGRFeatureDefn* Get() const { return definition; }
    OGRSpatialReference* Reference() const { return reference; }

  private:
    OGRFeatureDefn* definition;
    OGRSpatialReference* reference = nullptr;  // owned by the definition
};

extern const LayerSchema lineSchema;
extern const LayerSchema pointSchema;
extern const LayerSchema textSchema;

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
