#include "map/columns.h"

#include <algorithm>

namespace vemrado::map {
namespace {

ColumnType Coordinates(std::string name) {
    return {std::move(name), "+w:2", false, {{"xy", "g"}}};
}

ColumnType Geometry(const char* kind, ColumnType type, const std::string& crs) {
    std::string description = "{}";
    if (crs.starts_with('{')) {
        description = "{\"crs\":" + crs + ",\"crs_type\":\"projjson\"}";
    } else if (!crs.empty()) {
        description = "{\"crs\":\"" + crs + "\",\"crs_type\":\"authority_code\"}";
    }
    type.metadata = {{"ARROW:extension:name", kind}, {"ARROW:extension:metadata", description}};
    return type;
}

ColumnType List(std::string name, std::string itemFormat) {
    return {std::move(name), "+l", true, {{"item", std::move(itemFormat)}}};
}

// The places of the columns are those of the enumerations below.
std::vector<ColumnType> LineTypes(const std::string& crs) {
    return {
        {"fid", "l"},
        {"layer", "i"},
        {"code", "i", true},
        List("codes", "u"),
        List("types", "u"),
        List("symbols", "i"),
        List("m_values", "g"),
        List("r_values", "g"),
        List("u_values", "g"),
        Geometry("geoarrow.multilinestring",
                 {"geometry", "+l", false, {{"linestrings", "+l", false, {Coordinates("vertices")}}}}, crs)};
}

std::vector<ColumnType> PointTypes(const std::string& crs) {
    return {{"fid", "l"},
            {"layer", "i"},
            {"symbol", "i", true},
            {"rotation", "g"},
            {"scale", "g"},
            {"r_value", "g"},
            {"code", "u", true},
            {"type", "u"},
            {"line", "l", true},
            {"vertex", "i"},
            Geometry("geoarrow.point", Coordinates("geometry"), crs)};
}

std::vector<ColumnType> TextTypes(const std::string& crs) {
    return {{"fid", "l"},        {"layer", "i"},   {"text", "u"},
            {"code", "i", true}, {"height", "g"},  {"rotation", "g"},
            {"d_value", "i"},    {"f_value", "i"}, Geometry("geoarrow.point", Coordinates("geometry"), crs)};
}

std::vector<ColumnType> ParcelTypes(const std::string& crs) {
    return {{"fid", "l"},
            {"number", "u", true},
            {"texts", "i"},
            {"area", "g"},
            Geometry("geoarrow.polygon",
                     {"geometry", "+l", false, {{"rings", "+l", false, {Coordinates("vertices")}}}}, crs)};
}

enum LineField {
    lineFid,
    lineLayer,
    lineCode,
    lineCodes,
    lineTypes,
    lineSymbols,
    lineM,
    lineR,
    lineU,
    lineGeometry
};
enum PointField {
    pointFid,
    pointLayer,
    pointSymbol,
    pointRotation,
    pointScale,
    pointR,
    pointCode,
    pointType,
    pointLine,
    pointVertex,
    pointGeometry
};
enum TextField {
    textFid,
    textLayer,
    textText,
    textCode,
    textHeight,
    textRotation,
    textD,
    textF,
    textGeometry
};
enum ParcelField { parcelFid, parcelNumber, parcelTexts, parcelArea, parcelGeometry };

ColumnType TypeOf(Table table, const std::string& crs) {
    ColumnType type{"", "+s"};
    type.children = table == Table::lines    ? LineTypes(crs)
                    : table == Table::points ? PointTypes(crs)
                    : table == Table::texts  ? TextTypes(crs)
                                             : ParcelTypes(crs);
    return type;
}

// Whether any entry of the strokes' points is such.
template <typename Value, typename Is>
bool AnyOf(std::span<const Value> values, std::span<const Stroke> strokes, Is is) {
    return std::ranges::any_of(strokes, [&](const Stroke& stroke) {
        return std::ranges::any_of(values.subspan(stroke.first, stroke.count), is);
    });
}

// A list with an entry for each point of the strokes; null when all have the standard value.
template <typename Value>
void AddValues(ArrowColumn& column, std::span<const Stroke> strokes, std::span<const Value> values,
               Value standard) {
    // No number is no standard value.
    if (!AnyOf(values, strokes, [&](Value value) { return !(value == standard); })) return column.AddNull();
    for (const Stroke& stroke : strokes) column.Items().AddAll(values.subspan(stroke.first, stroke.count));
    column.EndList();
}

void AddCodes(ArrowColumn& column, std::span<const Stroke> strokes, std::span<const char* const> codes) {
    if (!AnyOf(codes, strokes, [](const char* code) { return *code != '\0'; })) return column.AddNull();
    for (const Stroke& stroke : strokes) {
        const size_t end = stroke.first + stroke.count;
        for (size_t i = stroke.first, next; i < end; i = next) {
            for (next = i + 1; next < end && codes[next] == codes[i]; ++next) {
            }
            column.Items().AddRepeated(codes[i], next - i);
        }
    }
    column.EndList();
}

}  // namespace

Columns::Columns(Table columnsTable, bool split, const std::string& crs)
    : table(columnsTable), splitByCode(split), type(TypeOf(table, crs)), rows(type) {}

void Columns::Take(const MapLine& line) {
    if (table == Table::lines) {
        ForEachLineRow(line, splitByCode, [&](const Code& code, std::span<const Stroke> strokes) {
            AddLineRow(line, code, strokes);
        });
    } else if (table == Table::points) {
        AddPointRows(line);
    }
}

void Columns::AddLineRow(const MapLine& line, const Code& code, std::span<const Stroke> strokes) {
    ArrowColumn* const fields = &rows.Field(0);
    fields[lineFid].AddRequired(++identifier);
    fields[lineLayer].AddRequired(line.layer);
    if (code.Given()) {
        fields[lineCode].Add(code.number);
    } else {
        fields[lineCode].AddNull();
    }
    AddCodes(fields[lineCodes], strokes, line.codes);
    for (const Stroke& stroke : strokes)
        fields[lineTypes].Items().AddLetters(line.types.subspan(stroke.first, stroke.count));
    fields[lineTypes].EndList();
    if (line.hasValues) {
        AddValues(fields[lineSymbols], strokes, line.symbolCodes, 0);
        AddValues(fields[lineM], strokes, line.valuesM, 1.0);
        AddValues(fields[lineR], strokes, line.valuesR, 0.0);
        AddValues(fields[lineU], strokes, line.valuesU, 0.0);
    } else {
        for (const LineField field : {lineSymbols, lineM, lineR, lineU}) fields[field].AddNull();
    }
    ArrowColumn& geometry = fields[lineGeometry];
    ArrowColumn& parts = geometry.Items();
    ArrowColumn& vertices = parts.Items();
    for (const Stroke& stroke : strokes) {
        vertices.AddPoints(line.points.subspan(stroke.first, stroke.count));
        parts.EndRequiredList();
        weight += stroke.count;
    }
    geometry.EndRequiredList();
    rows.EndStruct();
}

// The first row of lines that passes through each element.
void Columns::FindRowsOfElements(const MapLine& line) {
    rowOfElement.assign(line.points.size(), 0);
    ForEachLineRow(line, splitByCode, [&](const Code&, std::span<const Stroke> strokes) {
        ++lineIdentifier;
        for (const Stroke& stroke : strokes)
            for (size_t i = stroke.first; i < stroke.first + stroke.count; ++i)
                if (rowOfElement[i] == 0) rowOfElement[i] = lineIdentifier;
    });
}

void Columns::AddPointRows(const MapLine& line) {
    FindRowsOfElements(line);
    for (size_t i = 0; i < line.points.size(); ++i)
        if (line.symbolCodes[i] != 0 || rowOfElement[i] == 0) AddPointRow(line, i);
}

void Columns::AddPointRow(const MapLine& line, size_t element) {
    const int symbol = line.symbolCodes[element];
    rows.Field(pointFid).Add(++identifier);
    rows.Field(pointLayer).Add(line.layer);
    if (symbol != 0) {
        rows.Field(pointSymbol).Add(int32_t{symbol});
    } else {
        rows.Field(pointSymbol).AddNull();
    }
    rows.Field(pointRotation).Add(line.valuesU[element]);
    rows.Field(pointScale).Add(line.valuesM[element]);
    rows.Field(pointR).Add(line.valuesR[element]);
    if (*line.codes[element] != '\0') {
        rows.Field(pointCode).Add(std::string_view(line.codes[element]));
    } else {
        rows.Field(pointCode).AddNull();
    }
    rows.Field(pointType).Add(std::string_view(&line.types[element], 1));
    if (rowOfElement[element] != 0) {
        rows.Field(pointLine).Add(rowOfElement[element]);
    } else {
        rows.Field(pointLine).AddNull();
    }
    rows.Field(pointVertex).Add(static_cast<int32_t>(element));
    rows.Field(pointGeometry).AddPoints({&line.points[element], 1});
    rows.EndStruct();
    weight += 1;
}

void Columns::Take(const MapText& text) {
    if (table != Table::texts || text.fault == TextFault::place) return;
    rows.Field(textFid).Add(++identifier);
    rows.Field(textLayer).Add(text.layer);
    rows.Field(textText).Add(text.text);
    if (text.code != 0) {
        rows.Field(textCode).Add(text.code);
    } else {
        rows.Field(textCode).AddNull();
    }
    rows.Field(textHeight).Add(text.height);
    rows.Field(textRotation).Add(text.valueU);
    rows.Field(textD).Add(text.valueD);
    rows.Field(textF).Add(text.valueF);
    rows.Field(textGeometry).AddPoints({&text.point, 1});
    rows.EndStruct();
    weight += 1;
}

void Columns::Take(const Parcel& parcel) {
    rows.Field(parcelFid).Add(++identifier);
    if (parcel.texts > 0) {
        rows.Field(parcelNumber).Add(std::string_view(parcel.number));
    } else {
        rows.Field(parcelNumber).AddNull();
    }
    rows.Field(parcelTexts).Add(parcel.texts);
    rows.Field(parcelArea).Add(parcel.area.size);
    ArrowColumn& geometry = rows.Field(parcelGeometry);
    for (const Ring& ring : parcel.area.rings) {
        geometry.Items().Items().AddPoints(ring);
        geometry.Items().EndList();
        weight += ring.size();
    }
    geometry.EndList();
    rows.EndStruct();
}

void Columns::Export(ArrowArray* batch) {
    rows.Export(batch);
    weight = 0;
}

}  // namespace vemrado::map
