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

// A list with an entry for each point of the strokes; null when no entry says anything.
template <typename Says, typename Entry>
void AddList(ArrowColumn& column, std::span<const Stroke> strokes, Says says, Entry entry) {
    const auto anyOf = [&](const Stroke& stroke) {
        for (size_t i = stroke.first; i < stroke.first + stroke.count; ++i)
            if (says(i)) return true;
        return false;
    };
    if (!std::ranges::any_of(strokes, anyOf)) return column.AddNull();
    for (const Stroke& stroke : strokes)
        for (size_t i = stroke.first; i < stroke.first + stroke.count; ++i) column.Items().Add(entry(i));
    column.EndList();
}

// Exact: whether a value was given. No number is one too.
bool Given(double value, double standard) {
    return !(value == standard);
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
    rows.Field(lineFid).Add(++identifier);
    rows.Field(lineLayer).Add(line.layer);
    if (code.Given()) {
        rows.Field(lineCode).Add(code.number);
    } else {
        rows.Field(lineCode).AddNull();
    }
    const std::span<const VkmElement> elements = line.elements;
    AddList(
        rows.Field(lineCodes), strokes, [&](size_t i) { return line.codes[i].Given(); },
        [&](size_t i) { return line.codes[i].text; });
    AddList(
        rows.Field(lineTypes), strokes, [](size_t) { return true; },
        [&](size_t i) {
            static constexpr std::string_view letters = "CKLPR?";
            return letters.substr(std::min(letters.find(TypeLetter(elements[i])), letters.size() - 1), 1);
        });
    AddList(
        rows.Field(lineSymbols), strokes, [&](size_t i) { return elements[i].symbolCode != 0; },
        [&](size_t i) { return int32_t{elements[i].symbolCode}; });
    AddList(
        rows.Field(lineM), strokes, [&](size_t i) { return Given(elements[i].valueM, 1); },
        [&](size_t i) { return elements[i].valueM; });
    AddList(
        rows.Field(lineR), strokes, [&](size_t i) { return Given(elements[i].valueR, 0); },
        [&](size_t i) { return elements[i].valueR; });
    AddList(
        rows.Field(lineU), strokes, [&](size_t i) { return Given(elements[i].valueU, 0); },
        [&](size_t i) { return elements[i].valueU; });
    ArrowColumn& geometry = rows.Field(lineGeometry);
    for (const Stroke& stroke : strokes) {
        geometry.Items().Items().AddPoints(line.points.subspan(stroke.first, stroke.count));
        geometry.Items().EndList();
        weight += stroke.count;
    }
    geometry.EndList();
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
        if (line.elements[i].symbolCode != 0 || rowOfElement[i] == 0) AddPointRow(line, i);
}

void Columns::AddPointRow(const MapLine& line, size_t element) {
    const VkmElement& values = line.elements[element];
    const Code& code = line.codes[element];
    const char letter = TypeLetter(values);
    rows.Field(pointFid).Add(++identifier);
    rows.Field(pointLayer).Add(line.layer);
    if (values.symbolCode != 0) {
        rows.Field(pointSymbol).Add(int32_t{values.symbolCode});
    } else {
        rows.Field(pointSymbol).AddNull();
    }
    rows.Field(pointRotation).Add(values.valueU);
    rows.Field(pointScale).Add(values.valueM);
    rows.Field(pointR).Add(values.valueR);
    if (code.Given()) {
        rows.Field(pointCode).Add(code.text);
    } else {
        rows.Field(pointCode).AddNull();
    }
    rows.Field(pointType).Add(std::string_view(&letter, 1));
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
