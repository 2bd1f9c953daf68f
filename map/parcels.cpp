#include "map/parcels.h"

#include <cmath>
#include <limits>
#include <utility>

#include "map/box_tree.h"

namespace vemrado::map {
namespace {

Box AtPoint(Point point) {
    return {point.x, point.y, point.x, point.y};
}

// Gives every number to the parcel that holds it.
void GiveNumbers(std::vector<ParcelNumber>& numbers, Parcels& made) {
    std::vector<Box> bounds;
    bounds.reserve(made.parcels.size());
    for (const Parcel& parcel : made.parcels) bounds.push_back(parcel.area.bounds);
    const BoxTree tree(bounds);
    for (ParcelNumber& number : numbers) {
        Parcel* holder = nullptr;
        // Parcels do not overlap: the first that holds the place is the one.
        tree.Search(AtPoint(number.place), [&](uint32_t candidate) {
            Parcel& parcel = made.parcels[candidate];
            if (parcel.area.Holds(number.place)) holder = &parcel;
            return holder == nullptr;
        });
        if (holder == nullptr) {
            made.outside.push_back(std::move(number));
        } else if (++holder->texts == 1) {
            holder->number = std::move(number.text);
        }
    }
}

// Measures from every free end to the nearest other one, in a widening box.
std::vector<FreeEnd> WithGaps(const std::vector<Point>& ends) {
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

}  // namespace

Parcels ParcelBuilder::Build() {
    Parcels made;
    made.tooManyCrossings = !net.Build();
    made.crossings = net.Crossings();
    EnclosedAreas enclosed = FindAreas(net);
    made.freeEnds = WithGaps(enclosed.freeEnds);
    made.cutPieces = std::move(enclosed.cutPieces);
    made.parcels.reserve(enclosed.areas.size());
    for (Area& area : enclosed.areas) made.parcels.push_back({std::move(area), {}, 0});
    GiveNumbers(numbers, made);
    return made;
}

}  // namespace vemrado::map
