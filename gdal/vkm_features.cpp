#include "vkm_features.h"

#include <cpl_conv.h>
#include <ogr_geometry.h>

#include <cstring>

#include "styles.h"

namespace vemrado::gdal {

namespace {

constexpr int layerField = 0;  // in every layer

// Each enumeration numbers the fields of the table below it.
enum LineField : int {
    lineCode = 1,
    lineCodes,
    lineTypes,
    lineSymbols,
    lineValuesM,
    lineValuesR,
    lineValuesU
};
constexpr FieldSchema lineFields[] = {{"layer", OFTInteger, "Layer (U record)"},
                                      {"code", OFTInteger, "Code (K)"},
                                      {"codes", OFTStringList, "Code of each vertex (K)"},
                                      {"types", OFTStringList, "Type letter of each vertex"},
                                      {"symbols", OFTIntegerList, "Symbol code of each vertex (S)"},
                                      {"m_values", OFTRealList, "Symbol scale of each vertex (M)"},
                                      {"r_values", OFTRealList, "R value of each vertex"},
                                      {"u_values", OFTRealList, "Symbol rotation of each vertex (U)"}};

enum PointField : int {
    pointSymbol = 1,
    pointRotation,
    pointScale,
    pointValueR,
    pointCode,
    pointType,
    pointLine,
    pointVertex,
    pointPenCode
};
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

enum TextField : int { textText = 1, textCode, textHeight, textRotation, textValueD, textValueF };
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

    bool Wanted(int field) const { return feature.GetDefnRef()->GetFieldDefn(field)->IsIgnored() == 0; }
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

    // List fields: value(i) gives the i-th entry.
    template <typename Value>
    void Strings(int field, size_t count, Value value) {
        char** list = NewList<char*>(count, count + 1, value);
        list[count] = nullptr;
        feature.GetRawFieldRef(field)->StringList = {static_cast<int>(count), list};
    }
    template <typename Value>
    void Reals(int field, size_t count, Value value) {
        feature.GetRawFieldRef(field)->RealList = {static_cast<int>(count),
                                                   NewList<double>(count, count, value)};
    }
    template <typename Value>
    void Integers(int field, size_t count, Value value) {
        feature.GetRawFieldRef(field)->IntegerList = {static_cast<int>(count),
                                                      NewList<int>(count, count, value)};
    }

  private:
    // The feature frees it.
    template <typename Item, typename Value>
    static Item* NewList(size_t count, size_t room, Value value) {
        Item* list = static_cast<Item*>(CPLMalloc(room * sizeof(Item)));
        for (size_t i = 0; i < count; ++i) list[i] = value(i);
        return list;
    }

    OGRFeature& feature;
};

char* NewString(const char* text, size_t length) {
    char* copy = static_cast<char*>(CPLMalloc(length + 1));
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

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

// What the vertices of a line say beyond the defaults; lists that say nothing stay unset.
struct LineContents {
    bool codes = false;
    bool symbols = false;
    bool valuesM = false;
    bool valuesR = false;
    bool valuesU = false;
};

LineContents ContentsOf(const Batch& batch, const LineRecord& line) {
    LineContents contents;
    for (size_t i = line.first; i < line.first + line.count; ++i) {
        const VertexValues& values = batch.values[i];
        contents.codes |= values.code != 0;
        contents.symbols |= values.symbol != 0;
        contents.valuesM |= Differs(values.valueM, 1.0);
        contents.valuesR |= Differs(values.valueR, 0.0);
        contents.valuesU |= Differs(values.valueU, 0.0);
    }
    return contents;
}

void WriteLineFields(FieldWriter& fields, const Batch& batch, const LineRecord& line) {
    const LineContents contents = ContentsOf(batch, line);
    const VertexValues* values = &batch.values[line.first];
    fields.Integer(layerField, line.layer);
    if (line.code.given) fields.Integer(lineCode, line.code.number);
    if (contents.codes && fields.Wanted(lineCodes)) {
        fields.Strings(lineCodes, line.count,
                       [&](size_t i) { return CPLStrdup(batch.String(values[i].code)); });
    }
    if (fields.Wanted(lineTypes)) {
        fields.Strings(lineTypes, line.count, [&](size_t i) { return NewString(&values[i].type, 1); });
    }
    if (contents.symbols && fields.Wanted(lineSymbols))
        fields.Integers(lineSymbols, line.count, [&](size_t i) { return values[i].symbol; });
    if (contents.valuesM && fields.Wanted(lineValuesM))
        fields.Reals(lineValuesM, line.count, [&](size_t i) { return values[i].valueM; });
    if (contents.valuesR && fields.Wanted(lineValuesR))
        fields.Reals(lineValuesR, line.count, [&](size_t i) { return values[i].valueR; });
    if (contents.valuesU && fields.Wanted(lineValuesU))
        fields.Reals(lineValuesU, line.count, [&](size_t i) { return values[i].valueU; });
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
    WriteLineFields(fields, batch, line);
    if (needs.geometry) SetGeometry(*feature, MakeGeometry(batch, line), definition);
    if (needs.styles != nullptr) needs.styles->SetPen(*feature, line);
    return feature;
}

OGRFeature* MakeFeature(const Definition& definition, const Batch& batch, const PointRecord& point,
                        FeatureNeeds needs) {
    auto feature = new OGRFeature(definition.Get());
    FieldWriter fields(*feature);
    const VertexValues& values = batch.values[point.vertex];
    fields.Integer(layerField, point.layer);
    if (values.symbol != 0) fields.Integer(pointSymbol, values.symbol);
    fields.Real(pointRotation, values.valueU);
    fields.Real(pointScale, values.valueM);
    fields.Real(pointValueR, values.valueR);
    if (values.code != 0) fields.String(pointCode, batch.String(values.code));
    const char type[] = {values.type, '\0'};
    fields.String(pointType, type);
    if (point.line != 0) fields.Long(pointLine, point.line);
    fields.Integer(pointVertex, point.index);
    if (point.pen.given) fields.Integer(pointPenCode, point.pen.number);
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
    fields.Integer(layerField, text.layer);
    fields.String(textText, batch.String(text.text));
    if (text.code != 0) fields.Integer(textCode, text.code);
    fields.Real(textHeight, text.height);
    fields.Real(textRotation, text.valueU);
    fields.Integer(textValueD, text.valueD);
    fields.Integer(textValueF, text.valueF);
    if (needs.geometry) SetGeometry(*feature, new OGRPoint(text.point.x, text.point.y), definition);
    if (needs.styles != nullptr) needs.styles->SetLabel(*feature, batch.String(text.text), text);
    return feature;
}

}  // namespace vemrado::gdal
