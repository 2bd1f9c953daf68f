#include "sheet_table.h"

#include <cpl_string.h>

#include <algorithm>
#include <utility>

namespace vemrado::gdal {

namespace {

enum SheetField : int {
    sheetSource,
    sheetScale,
    sheetDate,
    sheetTitle,
    sheetComplete,
    sheetLines,
    sheetPoints,
    sheetTexts,
    sheetParcels,
    sheetWithoutNumber,
    sheetFreeEnds,
    sheetSize,
    sheetModified,
    sheetHash
};
constexpr FieldSchema sheetFields[] = {
    {"source", OFTString, "File"},
    {"map_scale", OFTReal, "Map scale number"},
    {"date", OFTString, "Date (D record)"},
    {"title", OFTString, "Comments of the header"},
    {"complete", OFTInteger, "1 when the file has its closing record"},
    {"lines", OFTInteger64, "Number of lines"},
    {"points", OFTInteger64, "Number of points"},
    {"texts", OFTInteger64, "Number of texts"},
    {"parcels", OFTInteger64, "Number of parcels, each counted with the first of its sheets"},
    {"without_number", OFTInteger64, "Number of these without a parcel number"},
    {"free_ends", OFTInteger64, "Number of free ends of parcel boundaries"},
    {"size", OFTInteger64, "Bytes of the file"},
    {"modified", OFTInteger64, "Time of the file's last change, s since 1970"},
    {"hash", OFTString, "Hash of the file's bytes"}};
constexpr const char* kindNames[] = {"lines", "points", "texts", "parcels", "sheets"};
constexpr OutputKind kindsOfSheets[] = {outputLines, outputPoints, outputTexts, outputSheets};
constexpr LayerSchema sheetSchema = {"sheets", wkbPolygon, sheetFields};

OGRGeometry* Outline(const OGREnvelope& extent) {
    auto ring = new OGRLinearRing();
    ring->addPoint(extent.MinX, extent.MinY);
    ring->addPoint(extent.MaxX, extent.MinY);
    ring->addPoint(extent.MaxX, extent.MaxY);
    ring->addPoint(extent.MinX, extent.MaxY);
    ring->closeRings();
    auto outline = new OGRPolygon();
    outline->addRingDirectly(ring);
    return outline;
}

uint64_t CountOf(OGRFeature& row, const char* field) {
    const int index = row.GetFieldIndex(field);
    return index >= 0 ? static_cast<uint64_t>(row.GetFieldAsInteger64(index)) : 0;
}

std::string TextOf(OGRFeature& row, const char* field) {
    const int index = row.GetFieldIndex(field);
    return index >= 0 ? row.GetFieldAsString(index) : "";
}

}  // namespace

SheetTable::SheetTable(const OGRSpatialReference* reference) : definition(sheetSchema, reference) {}

bool SheetTable::AddTo(OutputLayers& output) {
    if (!output.Add(outputSheets, *definition.Get(), wkbPolygon)) return false;
    if (output.WasThere(outputSheets)) Load(*output.Layer(outputSheets));
    return true;
}

void SheetTable::Load(OGRLayer& layer) {
    layer.ResetReading();
    while (const OGRFeatureUniquePtr feature{layer.GetNextFeature()}) {
        Row row;
        row.stamp.size = static_cast<int64_t>(CountOf(*feature, "size"));
        row.stamp.modified = static_cast<int64_t>(CountOf(*feature, "modified"));
        row.stamp.hash = TextOf(*feature, "hash");
        row.report.made = true;
        row.report.complete = CountOf(*feature, "complete") != 0;
        row.report.lines = CountOf(*feature, "lines");
        row.report.points = CountOf(*feature, "points");
        row.report.texts = CountOf(*feature, "texts");
        row.report.parcels = {CountOf(*feature, "parcels"), CountOf(*feature, "without_number"),
                              CountOf(*feature, "free_ends")};
        row.countsParcels = feature->IsFieldSetAndNotNull(feature->GetFieldIndex("parcels")) != FALSE;
        if (feature->GetGeometryRef() != nullptr) feature->GetGeometryRef()->getEnvelope(&row.extent);
        rows.insert_or_assign(TextOf(*feature, "source"), row);
    }
}

const SheetTable::Row* SheetTable::Find(const std::string& name) const {
    const auto found = rows.find(name);
    return found != rows.end() ? &found->second : nullptr;
}

bool SheetTable::CountsParcels() const {
    return std::ranges::all_of(rows, [](const auto& row) { return row.second.countsParcels; });
}

bool SheetTable::Put(OutputLayers& output, const std::string& name, const Row& row, double mapScale,
                     const Header& header) {
    OGRFeature feature(definition.Get());
    feature.SetField(sheetSource, name.c_str());
    feature.SetField(sheetScale, mapScale);
    if (!header.date.empty()) feature.SetField(sheetDate, header.date.c_str());
    if (!header.title.empty()) feature.SetField(sheetTitle, header.title.c_str());
    feature.SetField(sheetComplete, row.report.complete ? 1 : 0);
    feature.SetField(sheetLines, static_cast<GIntBig>(row.report.lines));
    feature.SetField(sheetPoints, static_cast<GIntBig>(row.report.points));
    feature.SetField(sheetTexts, static_cast<GIntBig>(row.report.texts));
    feature.SetField(sheetSize, static_cast<GIntBig>(row.stamp.size));
    feature.SetField(sheetModified, static_cast<GIntBig>(row.stamp.modified));
    feature.SetField(sheetHash, row.stamp.hash.c_str());
    if (row.extent.IsInit()) {
        OGRGeometry* outline = Outline(row.extent);
        outline->assignSpatialReference(definition.Reference());
        feature.SetGeometryDirectly(outline);
    }
    rows.insert_or_assign(name, row);
    return output.Write(outputSheets, feature);
}

bool IndexSources(OutputLayers& output, OutputKind kind) {
    const std::string table = output.Table(output.Layer(kind)->GetName());
    const std::string index = "\"" + std::string(kindNames[kind]) + "_source\"";
    return output.Run("CREATE INDEX IF NOT EXISTS " + index + " ON " + table + " (source)");
}

bool RemoveSheet(OutputLayers& output, const std::string& name) {
    return std::ranges::all_of(kindsOfSheets, [&](OutputKind kind) {
        if (!output.WasThere(kind)) return true;
        const std::string table = output.Table(output.Layer(kind)->GetName());
        return IndexSources(output, kind) &&
               output.Run("DELETE FROM " + table + " WHERE source = " + OutputLayers::Quoted(name));
    });
}

bool ForgetParcelCounts(OutputLayers& output) {
    return output.Run("UPDATE " + output.Table("sheets") +
                      " SET parcels = NULL, without_number = NULL, free_ends = NULL");
}

bool SetParcelCounts(OutputLayers& output, const std::string& name, const ParcelCounts& counts) {
    return output.Run(
        "UPDATE " + output.Table("sheets") + " SET parcels = " + std::to_string(counts.parcels) +
        ", without_number = " + std::to_string(counts.withoutNumber) +
        ", free_ends = " + std::to_string(counts.freeEnds) + " WHERE source = " + OutputLayers::Quoted(name));
}

}  // namespace vemrado::gdal
