#include "parcels.h"

#include <cpl_error.h>
#include <cpl_string.h>

#include <span>
#include <string>
#include <utility>

namespace vemrado::gdal {

namespace {

using map::Point;

// What is wrong with boundaries and numbers: cases of one kind, counted and told with the first places.
class Finding {
  public:
    void Add(Point place, const std::string& what = {}) {
        constexpr int shown = 3;
        if (++count > shown) return;
        examples += (count == 1 ? "" : "; ") + what + (what.empty() ? "" : " ") + "at ";
        // Adding zero leaves no negative zero to print.
        examples += CPLString().Printf("%.2f %.2f", place.x + 0.0, place.y + 0.0);
    }
    void Report(const std::string& file, const char* what) const {
        if (count == 0) return;
        CPLError(CE_Warning, CPLE_AppDefined, "%s: %d %s, for example %s", file.c_str(), count, what,
                 examples.c_str());
    }

  private:
    int count = 0;
    std::string examples;
};

void AddBoundaries(const Batch& batch, int layer, map::ParcelBuilder& builder) {
    std::vector<Point> points;
    for (const LineRecord& line : batch.lines) {
        if (line.layer != layer) continue;
        ForEachStroke(batch, line, [&](size_t first, size_t count) {
            points.clear();
            for (const OGRRawPoint& point : std::span(batch.vertices).subspan(first, count))
                points.push_back({point.x, point.y});
            builder.AddBoundary(points);
        });
    }
}

// Builders by file; what was read before a failure, which is reported to GDAL, counts.
std::vector<map::ParcelBuilder> ReadMaterial(Source& source, const map::ParcelLayers& layers) {
    std::vector<map::ParcelBuilder> builders(source.files.size());
    ElementReader reader(source, Content::everything);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        map::ParcelBuilder& builder = builders[batch.source];
        AddBoundaries(batch, layers.boundaries, builder);
        for (const TextRecord& text : batch.texts) {
            if (text.layer == layers.numbers)
                builder.AddNumber({text.point.x, text.point.y}, batch.String(text.text));
        }
    }
    return builders;
}

void Report(const map::Parcels& made, const std::string& name) {
    Finding freeEnds;
    Finding between;
    Finding outside;
    Finding none;
    Finding several;
    for (const map::FreeEnd& end : made.freeEnds) freeEnds.Add(end.place);
    for (const Point place : made.cutPieces) between.Add(place);
    for (const map::ParcelNumber& number : made.outside) outside.Add(number.place, number.text);
    for (const map::Parcel& parcel : made.parcels) {
        const Point corner = parcel.area.rings.front().front();
        if (parcel.texts == 0) none.Add(corner);
        if (parcel.texts > 1) several.Add(corner, parcel.number);
    }
    freeEnds.Report(name, "free ends of boundaries that close no parcel");
    between.Report(name, "boundaries lie between others and close no parcel");
    outside.Report(name, "parcel numbers lie outside any parcel");
    none.Report(name, "parcels have no number");
    several.Report(name, "parcels have more than one number, the first counts");
    if (made.tooManyCrossings)
        CPLError(CE_Warning, CPLE_AppDefined, "%s: no parcels, for the boundaries cross too often",
                 name.c_str());
}

}  // namespace

std::unique_ptr<OGRPolygon> FileParcel::Shape() const {
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
        Report(made, source.names[file]);
        for (map::Parcel& parcel : made.parcels) parcels.push_back({std::move(parcel), file});
    }
    return parcels;
}

}  // namespace vemrado::gdal
