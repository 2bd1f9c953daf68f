#include "arrow_rows.h"

#include <bit>
#include <cstring>

#include "record_fields.h"

namespace vemrado::gdal {

namespace {

using map::ColumnType;

ColumnType TypeOf(OGRFieldType type) {
    const auto list = [](const char* item) { return ColumnType{"", "+l", true, {{"item", item}}}; };
    switch (type) {
        case OFTInteger:
            return {"", "i", true};
        case OFTInteger64:
            return {"", "l", true};
        case OFTReal:
            return {"", "g", true};
        case OFTIntegerList:
            return list("i");
        case OFTRealList:
            return list("g");
        case OFTStringList:
            return list("u");
        default:
            return {"", "u", true};
    }
}

// Consumers read the names in the schema, which is OGRLayer's.
ColumnType RowType(OGRFeatureDefn& definition, bool withIdentifier) {
    ColumnType row{"", "+s"};
    if (withIdentifier) row.children.push_back({"", "l"});
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *definition.GetFieldDefn(i);
        if (field.IsIgnored() == 0) row.children.push_back(TypeOf(field.GetType()));
    }
    if (definition.IsGeometryIgnored() == 0) row.children.push_back({"", "z", true});
    return row;
}

// Appends geometries in their well-known binary form, in the machine's order of bytes.
class BinaryWriter {
  public:
    explicit BinaryWriter(std::vector<char>& written) : bytes(written) { bytes.clear(); }

    void Begin(OGRwkbGeometryType type) {
        bytes.push_back(std::endian::native == std::endian::little ? wkbNDR : wkbXDR);
        Number(static_cast<size_t>(type));
    }
    void Number(size_t value) {
        const auto narrow = static_cast<uint32_t>(value);
        Append(&narrow, sizeof narrow);
    }
    void Points(const OGRRawPoint* points, size_t count) {
        static_assert(sizeof(OGRRawPoint) == 2 * sizeof(double));
        Append(points, count * sizeof *points);
    }

  private:
    void Append(const void* from, size_t count) {
        const size_t place = bytes.size();
        bytes.resize(place + count);
        std::memcpy(bytes.data() + place, from, count);
    }

    std::vector<char>& bytes;
};

void WriteGeometry(BinaryWriter to, const Batch& batch, const LineRecord& line) {
    if (line.strokes > 1) {
        to.Begin(wkbMultiLineString);
        to.Number(line.strokes);
    }
    for (size_t i = line.firstStroke; i < line.firstStroke + line.strokes; ++i) {
        const StrokeRecord& stroke = batch.strokes[i];
        to.Begin(wkbLineString);
        to.Number(stroke.count);
        to.Points(&batch.vertices[stroke.first], stroke.count);
    }
}

void WriteGeometry(BinaryWriter to, const Batch& batch, const PointRecord& point) {
    to.Begin(wkbPoint);
    to.Points(&batch.vertices[point.vertex], 1);
}

void WriteGeometry(BinaryWriter to, const Batch&, const TextRecord& text) {
    to.Begin(wkbPoint);
    to.Points(&text.point, 1);
}

}  // namespace

ArrowRows::ArrowRows(OGRFeatureDefn& definition, bool identifiers)
    : withIdentifier(identifiers), rows(RowType(definition, identifiers)) {
    int column = withIdentifier ? 1 : 0;
    for (int i = 0; i < definition.GetFieldCount(); ++i)
        columnOfField.push_back(definition.GetFieldDefn(i)->IsIgnored() == 0 ? column++ : none);
    if (definition.IsGeometryIgnored() == 0) geometryColumn = column++;
    columns = static_cast<size_t>(column);
}

void ArrowRows::Identifier(GIntBig value) {
    if (withIdentifier) rows.Field(0).Add(int64_t{value});
}

template <typename Record>
void ArrowRows::Add(const Batch& batch, const Record& record) {
    WriteFields(*this, batch, record);
    if (geometryColumn == none) return;
    WriteGeometry(BinaryWriter(geometry), batch, record);
    weight += geometry.size();
    rows.Field(static_cast<size_t>(geometryColumn)).Add(std::string_view(geometry.data(), geometry.size()));
}

template void ArrowRows::Add(const Batch& batch, const LineRecord& record);
template void ArrowRows::Add(const Batch& batch, const PointRecord& record);
template void ArrowRows::Add(const Batch& batch, const TextRecord& record);

void ArrowRows::EndRow() {
    rows.EndStruct();
    for (size_t i = 0; i < columns; ++i)
        if (rows.Field(i).Rows() < rows.Rows()) rows.Field(i).AddNull();
}

}  // namespace vemrado::gdal
