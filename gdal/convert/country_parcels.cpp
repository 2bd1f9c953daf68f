#include "country_parcels.h"

#include <cpl_string.h>

#include <algorithm>

#include "map/parcel_sweep.h"

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

bool CountryParcels::Write(const map::Parcel& parcel) {
    OGRFeature feature(definition.Get());
    if (parcel.texts > 0) feature.SetField(parcelNumber, parcel.number.c_str());
    feature.SetField(parcelTexts, parcel.texts);
    feature.SetField(parcelArea, parcel.area.size);
    if (!parcel.area.sources.empty()) ++members[parcel.area.sources.front()].report->parcels;
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
    if (!output.Has(outputSheets)) return true;
    const std::string table = output.Table("sheets");
    return output.Run("CREATE INDEX IF NOT EXISTS \"sheets_source\" ON " + table + " (source)") &&
           std::ranges::all_of(members, [&](const Member& member) {
               return output.Run("UPDATE " + table +
                                 " SET parcels = " + std::to_string(member.report->parcels) +
                                 " WHERE source = " + OutputLayers::Quoted(member.name));
           });
}

bool CountryParcels::Write(const std::string& shownName, const std::function<bool()>& stopRequested) {
    if (!Prepare()) return false;
    std::ranges::stable_sort(members, {}, &Member::west);
    bool written = true;
    ParcelFindings findings;
    map::ParcelSweep sweep([&](map::Parcels&& made) {
        findings.Add(made);
        for (const map::Parcel& parcel : made.parcels) written = written && Write(parcel);
    });
    for (size_t i = 0; i < members.size() && written; ++i) {
        const auto number = static_cast<uint32_t>(i);
        members[i].report->parcels = 0;
        sweep.Advance(members[i].west);
        Sheet sheet(members[i].file, members[i].name, settings, stopRequested);
        written = written && sheet.ReadAlone([&](const Batch& batch) {
            ForParcels(
                batch, settings.parcelLayers,
                [&](std::span<const map::Point> stroke) { sweep.AddBoundary(stroke, number); },
                [&](map::Point place, const char* text) { sweep.AddNumber(place, text, number); });
            return true;
        });
    }
    if (!written || stopRequested()) return false;
    sweep.Finish();
    if (!written) return false;
    findings.Report(shownName);
    return TellCounts();
}

}  // namespace vemrado::gdal
