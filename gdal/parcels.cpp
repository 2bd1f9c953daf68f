#include "parcels.h"

#include <cpl_error.h>
#include <cpl_string.h>

#include <span>
#include <string>
#include <utility>

namespace vemrado::gdal {

namespace {

// Builders by file; what was read before a failure, which is reported to GDAL, counts.
std::vector<map::ParcelBuilder> ReadMaterial(Source& source, const map::ParcelLayers& layers) {
    std::vector<map::ParcelBuilder> builders(source.files.size());
    ElementReader reader(source, Content::everything);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        map::ParcelBuilder& builder = builders[batch.source];
        ForParcels(
            batch, layers, [&](std::span<const map::Point> stroke) { builder.AddBoundary(stroke); },
            [&](map::Point place, const char* text) { builder.AddNumber(place, text); });
    }
    return builders;
}

}  // namespace

void ParcelFindings::Finding::Add(map::Point place, const std::string& what) {
    constexpr int shown = 3;
    if (++count > shown) return;
    examples += (count == 1 ? "" : "; ") + what + (what.empty() ? "" : " ") + "at ";
    // Adding zero leaves no negative zero to print.
    examples += CPLString().Printf("%.2f %.2f", place.x + 0.0, place.y + 0.0);
}

void ParcelFindings::Finding::Report(const std::string& file, const char* what) const {
    if (count == 0) return;
    CPLError(CE_Warning, CPLE_AppDefined, "%s: %d %s, for example %s", file.c_str(), count, what,
             examples.c_str());
}

void ParcelFindings::Add(const map::Parcels& made) {
    for (const map::FreeEnd& end : made.freeEnds) freeEnds.Add(end.place);
    for (const map::Point place : made.cutPieces) between.Add(place);
    for (const map::ParcelNumber& number : made.outside) outside.Add(number.place, number.text);
    for (const map::Parcel& parcel : made.parcels) {
        const map::Point corner = parcel.area.rings.front().front();
        if (parcel.texts == 0) none.Add(corner);
        if (parcel.texts > 1) several.Add(corner, parcel.number);
    }
    tooManyCrossings |= made.tooManyCrossings;
}

void ParcelFindings::Report(const std::string& file) const {
    freeEnds.Report(file, "free ends of boundaries that close no parcel");
    between.Report(file, "boundaries lie between others and close no parcel");
    outside.Report(file, "parcel numbers lie outside any parcel");
    none.Report(file, "parcels have no number");
    several.Report(file, "parcels have more than one number, the first counts");
    if (tooManyCrossings)
        CPLError(CE_Warning, CPLE_AppDefined, "%s: no parcels, for the boundaries cross too often",
                 file.c_str());
}

std::unique_ptr<OGRPolygon> PolygonOf(const map::Parcel& parcel) {
    auto shape = std::make_unique<OGRPolygon>();
    for (const map::Ring& ring : parcel.area.rings) {
        auto made = std::make_unique<OGRLinearRing>();
        made->setNumPoints(static_cast<int>(ring.size()), FALSE);
        for (size_t i = 0; i < ring.size(); ++i) made->setPoint(static_cast<int>(i), ring[i].x, ring[i].y);
        shape->addRingDirectly(made.release());
    }
    return shape;
}

std::vector<FileParcel> BuildParcels(Source& source, const map::ParcelLayers& layers) {
    std::vector<FileParcel> parcels;
    std::vector<map::ParcelBuilder> builders = ReadMaterial(source, layers);
    for (size_t file = 0; file < builders.size(); ++file) {
        map::Parcels made = builders[file].Build();
        ParcelFindings findings;
        findings.Add(made);
        findings.Report(source.names[file]);
        for (map::Parcel& parcel : made.parcels) parcels.push_back({std::move(parcel), file});
    }
    return parcels;
}

}  // namespace vemrado::gdal
