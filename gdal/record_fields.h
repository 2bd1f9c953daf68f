// The fields of the layers, and what a record of a batch says in each: the one list for features and for
// columns.

#pragma once

#include "elements.h"

namespace vemrado::gdal {

// Each enumeration numbers the fields of a layer's schema.
constexpr int layerField = 0;  // in every layer
enum LineField : int {
    lineCode = 1,
    lineCodes,
    lineTypes,
    lineSymbols,
    lineValuesM,
    lineValuesR,
    lineValuesU
};
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
enum TextField : int { textText = 1, textCode, textHeight, textRotation, textValueD, textValueF };

// What the vertices of a line say beyond the defaults; lists that say nothing stay unset.
struct LineContents {
    bool codes = false;
    bool symbols = false;
    bool valuesM = false;
    bool valuesR = false;
    bool valuesU = false;
};

inline LineContents ContentsOf(const VertexValues* vertices, size_t count) {
    LineContents contents;
    for (size_t i = 0; i < count; ++i) {
        const VertexValues& values = vertices[i];
        contents.codes |= values.code != 0;
        contents.symbols |= values.symbol != 0;
        contents.valuesM |= Differs(values.valueM, 1.0);
        contents.valuesR |= Differs(values.valueR, 0.0);
        contents.valuesU |= Differs(values.valueU, 0.0);
    }
    return contents;
}

// Fields has Integer, Long, Real and String, and for lists, whose entries a function gives by their places,
// Integers, Reals, Strings and Letters. What is not written is unset.
template <typename Fields>
void WriteFields(Fields& fields, const Batch& batch, const LineRecord& line) {
    const VertexValues* values = &batch.values[line.first];
    const LineContents contents = ContentsOf(values, line.count);
    fields.Integer(layerField, line.layer);
    if (line.code.given) fields.Integer(lineCode, line.code.number);
    if (contents.codes)
        fields.Strings(lineCodes, line.count, [&](size_t i) { return batch.String(values[i].code); });
    fields.Letters(lineTypes, line.count, [&](size_t i) { return values[i].type; });
    if (contents.symbols)
        fields.Integers(lineSymbols, line.count, [&](size_t i) { return values[i].symbol; });
    if (contents.valuesM) fields.Reals(lineValuesM, line.count, [&](size_t i) { return values[i].valueM; });
    if (contents.valuesR) fields.Reals(lineValuesR, line.count, [&](size_t i) { return values[i].valueR; });
    if (contents.valuesU) fields.Reals(lineValuesU, line.count, [&](size_t i) { return values[i].valueU; });
}

template <typename Fields>
void WriteFields(Fields& fields, const Batch& batch, const PointRecord& point) {
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
}

template <typename Fields>
void WriteFields(Fields& fields, const Batch& batch, const TextRecord& text) {
    fields.Integer(layerField, text.layer);
    fields.String(textText, batch.String(text.text));
    if (text.code != 0) fields.Integer(textCode, text.code);
    fields.Real(textHeight, text.height);
    fields.Real(textRotation, text.valueU);
    fields.Integer(textValueD, text.valueD);
    fields.Integer(textValueF, text.valueF);
}

}  // namespace vemrado::gdal
