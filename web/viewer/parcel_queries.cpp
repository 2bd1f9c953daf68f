// Parcels for the page.

#include "json.h"
#include "queries.h"

namespace vemrado::web {
namespace {

void PutPlaces(Json& json, const char* name, const std::vector<draw::Point>& places) {
    json.Key(name).Begin('[');
    for (const draw::Point place : places) json.Number(place.x).Number(place.y);
    json.End(']');
}

}  // namespace

map::Parcels FindParcels(const Viewer& viewer) {
    const map::ParcelLayers from;
    map::ParcelBuilder builder;
    for (const auto& sheet : viewer.Sheets()) {
        const draw::Scene& scene = sheet->Scene();
        if (const auto layer = scene.layers.find(from.boundaries); layer != scene.layers.end()) {
            for (const draw::Stroke& stroke : layer->second.strokes) {
                builder.AddBoundary({layer->second.points.data() + stroke.first, stroke.count});
            }
        }
        if (const auto layer = scene.layers.find(from.numbers); layer != scene.layers.end()) {
            for (const draw::PlacedText& text : layer->second.texts) builder.AddNumber(text.point, text.text);
        }
    }
    return builder.Build();
}

std::string ParcelList(const map::Parcels& parcels) {
    Json json;
    json.Begin('{').Key("parcels").Begin('[');
    for (const map::Parcel& parcel : parcels.parcels) {
        json.Begin('{').Member("number", parcel.number).Member("texts", parcel.texts);
        json.Member("size", parcel.area.size).Key("box").Begin('[');
        const draw::Box& box = parcel.area.bounds;
        json.Number(box.minX).Number(box.minY).Number(box.maxX).Number(box.maxY).End(']').End('}');
    }
    json.End(']').Key("freeEnds").Begin('[');
    for (const map::FreeEnd& end : parcels.freeEnds) {
        json.Begin('{').Member("x", end.place.x).Member("y", end.place.y).Member("gap", end.gap).End('}');
    }
    json.End(']');
    PutPlaces(json, "cutPieces", parcels.cutPieces);
    PutPlaces(json, "crossings", parcels.crossings);
    json.Key("outside").Begin('[');
    for (const map::ParcelNumber& number : parcels.outside) {
        json.Begin('{')
            .Member("number", number.text)
            .Member("x", number.place.x)
            .Member("y", number.place.y)
            .End('}');
    }
    return json.End(']').Member("tooManyCrossings", parcels.tooManyCrossings).End('}').Text();
}

std::string ParcelRings(const map::Parcel& parcel) {
    Json json;
    json.Begin('{')
        .Member("number", parcel.number)
        .Member("texts", parcel.texts)
        .Member("size", parcel.area.size);
    json.Key("rings").Begin('[');
    for (const map::Ring& ring : parcel.area.rings) {
        json.Begin('[');
        for (const draw::Point point : ring) json.Number(point.x).Number(point.y);
        json.End(']');
    }
    return json.End(']').End('}').Text();
}

}  // namespace vemrado::web
