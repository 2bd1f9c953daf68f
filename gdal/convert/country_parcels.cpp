#include "country_parcels.h"

#include <cpl_string.h>

#include <algorithm>
#include <tuple>

#include "sheet_table.h"
#include "stored_sheet.h"

namespace vemrado::gdal {

namespace {

enum ParcelField : int { parcelNumber, parcelTexts, parcelArea, parcelSource, parcelSheets };
constexpr FieldSchema parcelFields[] = {{"number", OFTString, "Parcel number, the first text inside"},
                                        {"texts", OFTInteger, "Number texts inside"},
                                        {"area", OFTReal, "Area of the polygon"}};
constexpr LayerSchema parcelSchema = {"parcels", wkbPolygon, parcelFields};

}  // namespace

CountryParcels::CountryParcels(const OpenSettings& openSettings, bool many, OutputLayers& to)
    : settings(openSettings),
      manySheets(many),
      output(to),
      definition(parcelSchema, openSettings.reference ? &*openSettings.reference : nullptr) {
    if (!manySheets) return;
    definition.AddField({"source", OFTString, "First file that its boundary comes from"});
    definition.AddField({"sheets", OFTStringList, "All files that its boundary comes from"});
}

bool CountryParcels::Prepare() {
    if (!output.Add(outputParcels, *definition.Get(), wkbPolygon)) return false;
    return !output.WasThere(outputParcels) || output.Run("DELETE FROM " + output.Table("parcels"));
}

// Each is counted with the first of its sheets.
void CountryParcels::Count(const map::Parcels& made) {
    for (const map::Parcel& parcel : made.parcels) {
        if (parcel.area.sources.empty()) continue;
        ParcelCounts& counts = members[parcel.area.sources.front()].counts;
        ++counts.parcels;
        if (parcel.texts == 0) ++counts.withoutNumber;
    }
    for (const map::FreeEnd& end : made.freeEnds) ++members[end.source].counts.freeEnds;
}

bool CountryParcels::Write(const map::Parcel& parcel) {
    OGRFeature feature(definition.Get());
    if (parcel.texts > 0) feature.SetField(parcelNumber, parcel.number.c_str());
    feature.SetField(parcelTexts, parcel.texts);
    feature.SetField(parcelArea, parcel.area.size);
    if (manySheets && !parcel.area.sources.empty()) {
        CPLStringList names;
        for (const uint32_t sheet : parcel.area.sources) names.AddString(members[sheet].name.c_str());
        feature.SetField(parcelSource, members[parcel.area.sources.front()].name.c_str());
        feature.SetField(parcelSheets, names.List());
    }
    OGRPolygon* shape = PolygonOf(parcel).release();
    shape->assignSpatialReference(definition.Reference());
    feature.SetGeometryDirectly(shape);
    return output.Write(outputParcels, feature);
}

bool CountryParcels::TellCounts() {
    for (const Counted& member : members) {
        if (member.report != nullptr) member.report->parcels = member.counts;
    }
    if (!output.Has(outputSheets)) return true;
    return IndexSources(output, outputSheets) && std::ranges::all_of(members, [&](const Counted& member) {
               return SetParcelCounts(output, member.name, member.counts);
           });
}

bool CountryParcels::Read(const Counted& member, uint32_t number, map::ParcelSweep& sweep,
                          const std::function<bool()>& stopRequested) {
    const auto addBoundary = [&](std::span<const map::Point> stroke) { sweep.AddBoundary(stroke, number); };
    const auto addNumber = [&](map::Point place, const char* text) { sweep.AddNumber(place, text, number); };
    if (member.file.empty())
        return !stopRequested() &&
               ReadStoredSheet(output, member.name, settings.parcelLayers, addBoundary, addNumber);
    Sheet sheet(member.file, member.name, settings, stopRequested);
    return sheet.ReadAlone([&](const Batch& batch) {
        ForParcels(batch, settings.parcelLayers, addBoundary, addNumber);
        return true;
    });
}

bool CountryParcels::Write(const std::string& shownName, const std::function<bool()>& stopRequested) {
    if (!Prepare()) return false;
    std::ranges::sort(members, [](const Member& a, const Member& b) {
        return std::tie(a.west, a.name) < std::tie(b.west, b.name);
    });
    bool written = true;
    ParcelFindings findings;
    map::ParcelSweep sweep([&](map::Parcels&& made) {
        findings.Add(made);
        Count(made);
        for (const map::Parcel& parcel : made.parcels) written = written && Write(parcel);
    });
    for (size_t i = 0; i < members.size() && written; ++i) {
        sweep.Advance(members[i].west);
        written = written && Read(members[i], static_cast<uint32_t>(i), sweep, stopRequested);
    }
    if (!written || stopRequested()) return false;
    sweep.Finish();
    if (!written) return false;
    findings.Report(shownName);
    return TellCounts();
}

}  // namespace vemrado::gdal
