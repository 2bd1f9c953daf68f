#include "map/parcels.h"

#include <cmath>
#include <limits>
#include <utility>

namespace vemrado::map {
namespace {

Box AtPoint(Point point) {
    return {point.x, point.y, point.x, point.y};
}

}  // namespace

AreaFinder::AreaFinder(const std::vector<Parcel>& from) : parcels(from) {
    std::vector<Box> bounds;
    bounds.reserve(parcels.size());
    for (const Parcel& parcel : parcels) bounds.push_back(parcel.area.bounds);
    tree = BoxTree(bounds);
}

// Parcels do not overlap: the first that holds the place is the one.
size_t AreaFinder::Find(Point place) const {
    size_t found = nowhere;
    tree.Search(AtPoint(place), [&](uint32_t candidate) {
        if (parcels[candidate].area.Holds(place)) found = candidate;
        return found == nowhere;
    });
    return found;
}

void GiveNumbers(std::vector<ParcelNumber>& numbers, Parcels& made) {
    const AreaFinder finder(made.parcels);
    for (ParcelNumber& number : numbers) {
        const size_t found = finder.Find(number.place);
        if (found == AreaFinder::nowhere) {
            made.outside.push_back(std::move(number));
        } else if (Parcel& parcel = made.parcels[found]; ++parcel.texts == 1) {
            parcel.number = std::move(number.text);
        }
    }
}

// Looks in a widening box around every end.
std::vector<FreeEnd> MeasureGaps(const std::vector<Point>& ends) {
    std::vector<Box> places;
    places.reserve(ends.size());
    for (const Point end : ends) places.push_back(AtPoint(end));
    const BoxTree tree(places);
    std::vector<FreeEnd> measured;
    measured.reserve(ends.size());
    for (size_t i = 0; i < ends.size(); ++i) {
        double gap = std::numeric_limits<double>::infinity();
        for (double reach = 0.01; gap > reach && reach < 2 * FreeEnd::farthestGap; reach *= 4) {
            tree.Search(places[i].Grown(reach), [&](uint32_t other) {
                const double distance = std::hypot(ends[other].x - ends[i].x, ends[other].y - ends[i].y);
                if (other != i && distance < gap) gap = distance;
                return true;
            });
        }
        if (gap > FreeEnd::farthestGap) gap = std::numeric_limits<double>::infinity();
        measured.push_back({ends[i], gap});
    }
    return measured;
}

Parcels ParcelBuilder::Build() {
    Parcels made;
    made.tooManyCrossings = !net.Build();
    made.crossings = net.Crossings();
    EnclosedAreas enclosed = FindAreas(net);
    made.freeEnds = MeasureGaps(enclosed.freeEnds);
    made.cutPieces = std::move(enclosed.cutPieces);
    made.parcels.reserve(enclosed.areas.size());
    for (Area& area : enclosed.areas) made.parcels.push_back({std::move(area), {}, 0});
    GiveNumbers(numbers, made);
    return made;
}

}  // namespace vemrado::map
