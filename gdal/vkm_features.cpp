#include "vkm_features.h"

#include <cpl_conv.h>
#include <ogr_geometry.h>

#include "record_fields.h"
#include "styles.h"

namespace vemrado::gdal {

namespace {

// In the order of the enumerations of the fields.
constexpr FieldSchema lineFields[] = {{"layer", OFTInteger, "Layer (U record)"},
                                      {"code", OFTInteger, "Code (K)"},
                                      {"codes", OFTStringList, "Code of each vertex (K)"},
                                      {"types", OFTStringList, "Type letter of each vertex"},
                                      {"symbols", OFTIntegerList, "Symbol code of each vertex (S)"},
                                      {"m_values", OFTRealList, "Symbol scale of each vertex (M)"},
                                      {"r_values", OFTRealList, "R value of each vertex"},
                                      {"u_values", OFTRealList, "Symbol rotation of each vertex (U)"}};

constexpr FieldSchema pointFields[] = {{"layer", OFTInteger, "Layer (U record)"},
                                       {"symbol", OFTInteger, "Symbol code (S)"},
                                       {"rotation", OFTReal, "Rotation as in the file (U)"},
                                       {"scale", OFTReal, "Scale (M)"},
                                       {"r_value", OFTReal, "R value"},
                                       {"code", OFTString, "Code of the line element (K)"},
                                       {"type", OFTString, "Type letter of the line element"},
                                       {"line", OFTInteger64, "Identifier of the line it lies on"},
                                       {"vertex", OFTInteger, "Place in its line, from 0"},
                                       {"pen_code", OFTInteger, "Code whose pen colours its symbol"}};

constexpr FieldSchema textFields[] = {
    {"layer", OFTInteger, "Layer (U record)"},
    {"text", OFTString, "Text"},
    {"code", OFTInteger, "Code (K)"},
    {"height", OFTReal, "Height in ground units (H times map scale / 1000)"},
    {"rotation", OFTReal, "Rotation as in the file (U)"},
    {"d_value", OFTInteger, "D value"},
    {"f_value", OFTInteger, "F value"}};

// Fills the fields of a new feature by their places. Nothing is written to a field that the user ignores.
class FieldWriter {
  public:
    explicit FieldWriter(OGRFeature& written) : feature(written) {}

    void Integer(int field, int value) {
        if (Wanted(field)) feature.SetFieldSameTypeUnsafe(field, value);
    }
    void Long(int field, GIntBig value) {
        if (Wanted(field)) feature.SetFieldSameTypeUnsafe(field, value);
    }
    void Real(int field, double value) {
        if (Wanted(field)) feature.SetFieldSameTypeUnsafe(field, value);
    }
    void String(int field, const char* value) {
        if (Wanted(field)) feature.SetFieldSameTypeUnsafe(field, CPLStrdup(value));
    }

    template <typename Value>
    void Strings(int field, size_t count, Value value) {
        NewStrings(field, count, [&](size_t i) { return CPLStrdup(value(i)); });
    }
    template <typename Value>
    void Letters(int field, size_t count, Value value) {
        NewStrings(field, count, [&](size_t i) { return NewLetter(value(i)); });
    }
    template <typename Value>
    void Reals(int field, size_t count, Value value) {
        if (Wanted(field))
            feature.GetRawFieldRef(field)->RealList = {static_cast<int>(count),
                                                       NewList<double>(count, count, value)};
    }
    template <typename Value>
    void Integers(int field, size_t count, Value value) {
        if (Wanted(field))
            feature.GetRawFieldRef(field)->IntegerList = {static_cast<int>(count),
                                                          NewList<int>(count, count, value)};
    }

  private:
    bool Wanted(int field) const { return feature.GetDefnRef()->GetFieldDefn(field)->IsIgnored() == 0; }

    // The feature frees all of them.
    template <typename Item, typename Value>
    static Item* NewList(size_t count, size_t room, Value value) {
        Item* list = static_cast<Item*>(CPLMalloc(room * sizeof(Item)));
        for (size_t i = 0; i < count; ++i) list[i] = value(i);
        return list;
    }
    static char* NewLetter(char letter) {
        char* text = static_cast<char*>(CPLMalloc(2));
        text[0] = letter;
        text[1] = '\0';
        return text;
    }
    template <typename Value>
    void NewStrings(int field, size_t count, Value value) {
        if (!Wanted(field)) return;
        char** list = NewList<char*>(count, count + 1, value);
        list[count] = nullptr;
        feature.GetRawFieldRef(field)->StringList = {static_cast<int>(count), list};
    }

    OGRFeature& feature;
};

OGRGeometry* MakeStroke(const Batch& batch, const StrokeRecord& record) {
    auto stroke = new OGRLineString();
    stroke->setPoints(static_cast<int>(record.count), &batch.vertices[record.first]);
    return stroke;
}

OGRGeometry* MakeGeometry(const Batch& batch, const LineRecord& line) {
    OGRMultiLineString* strokes = line.strokes > 1 ? new OGRMultiLineString() : nullptr;
    OGRGeometry* geometry = strokes;
    for (size_t i = line.firstStroke; i < line.firstStroke + line.strokes; ++i) {
        OGRGeometry* stroke = MakeStroke(batch, batch.strokes[i]);
        if (strokes != nullptr) {
            strokes->addGeometryDirectly(stroke);
        } else {
            geometry = stroke;
        }
    }
    return geometry;
}

void SetGeometry(OGRFeature& feature, OGRGeometry* geometry, const Definition& definition) {
    geometry->assignSpatialReference(definition.Reference());
    feature.SetGeometryDirectly(geometry);
}

}  // namespace

// Lines are LineString or MultiLineString, which no narrower type covers.
const LayerSchema lineSchema = {"lines", wkbUnknown, lineFields};
const LayerSchema pointSchema = {"points", wkbPoint, pointFields};
const LayerSchema textSchema = {"texts", wkbPoint, textFields};

Definition::Definition(const LayerSchema& schema, const OGRSpatialReference* source)
    : definition(new OGRFeatureDefn(schema.name)) {
    definition->Reference();
    definition->SetGeomType(schema.geometryType);
    for (const FieldSchema& field : schema.fields) AddField(field);
    if (source == nullptr) return;
    OGRSpatialReference* own = source->Clone();
    definition->GetGeomFieldDefn(0)->SetSpatialRef(own);
    own->Release();
    reference = own;
}

Definition::~Definition() {
    definition->Release();
}

void Definition::AddField(const FieldSchema& field) {
    OGRFieldDefn added(field.name, field.type);
    added.SetAlternativeName(field.comment);
    definition->AddFieldDefn(&added);
}

OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const LineRecord& line,
                        FeatureNeeds needs) {
    auto feature = new OGRFeature(definition.Get());
    FieldWriter fields(*feature);
    WriteFields(fields, batch, line);
    if (needs.geometry) SetGeometry(*feature, MakeGeometry(batch, line), definition);
    if (needs.styles != nullptr) needs.styles->SetPen(*feature, line);
    return feature;
}

OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const PointRecord& point,
                        FeatureNeeds needs) {
    auto feature = new OGRFeature(definition.Get());
    FieldWriter fields(*feature);
    WriteFields(fields, batch, point);
    if (needs.geometry) {
        const OGRRawPoint& place = batch.vertices[point.vertex];
        SetGeometry(*feature, new OGRPoint(place.x, place.y), definition);
    }
    if (needs.styles != nullptr) needs.styles->SetSymbol(*feature, batch, point);
    return feature;
}

OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const TextRecord& text,
                        FeatureNeeds needs) {
    auto feature = new OGRFeature(definition.Get());
    FieldWriter fields(*feature);
    WriteFields(fields, batch, text);
    if (needs.geometry) SetGeometry(*feature, new OGRPoint(text.point.x, text.point.y), definition);
    if (needs.styles != nullptr) needs.styles->SetLabel(*feature, batch.String(text.text), text);
    return feature;
}

}  // namespace vemrado::gdal
