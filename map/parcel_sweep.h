// Parcels of more sheets than fit into memory at once.
//
// The sheets come from west to east, by their western edge. Whenever enough has come, the parcels that
// nothing to come can touch any more are handed over, and the boundaries that only they need are forgotten.
// So memory follows the sheets around the sweep and not the country, and a parcel that lies on many sheets is
// still one.

#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "map/parcels.h"

namespace vemrado::map {

class ParcelSweep {
  public:
    // Gets parcels and faults as they become final, each once. The sources of an area and of a free end are
    // sheet numbers; an area's neighbours are not told, for some were handed over before.
    using Take = std::function<void(Parcels&&)>;

    explicit ParcelSweep(Take take) : give(std::move(take)) {}

    void AddBoundary(std::span<const Point> stroke, uint32_t sheet);
    void AddNumber(Point place, std::string_view text, uint32_t sheet);

    // Says that nothing to come lies west of x, which never falls. Hands over what is final then when enough
    // has come.
    void Advance(double x);
    // The same, at once.
    void HandOver(double x);
    // Hands over the rest.
    void Finish();

  private:
    // A piece of boundary that parcels to come may need.
    struct Segment {
        Point from;
        Point to;
        uint32_t sheet;
        double EastEnd() const { return from.x > to.x ? from.x : to.x; }
    };

    Parcels BuildUpTo(double x, std::vector<bool>& needed);
    void GiveNumbers(double x, const std::vector<Parcel>& open, Parcels& made);
    void NameSheets(std::vector<FreeEnd>& ends) const;
    std::vector<uint32_t> SheetsOf(const std::vector<uint32_t>& numbers) const;

    Take give;
    std::vector<Segment> segments;
    std::vector<ParcelNumber> numbers;
    size_t keptSegments = 0;                                       // by the last handing over
    double handedOver = -std::numeric_limits<double>::infinity();  // up to here
};

}  // namespace vemrado::map
