// Buildings on parcels: outlines aligned with the street, drawn with their sheds and inner lines.

#pragma once

#include "drawing.h"
#include "parcels.h"
#include "random.h"

namespace generate {

// A parcel's outline as the furnishing of the parcel needs it.
struct Site {
    Ring ring;
    std::vector<Side> sides;
    Front front;
    bool hasFront = false;
};

struct BuildingPlan {
    bool built = false;
    Point center;        // of the main building
    Point entranceWall;  // middle of its street side
    double back = 0;     // distance of its back wall from the street
};

class Builder {
  public:
    Builder(Drawing& sheet, Random& numbers) : drawing(sheet), random(numbers) {}

    // Begins another parcel; Occupied are the outlines drawn on it.
    void StartParcel() { occupied.clear(); }
    const std::vector<Ring>& Occupied() const { return occupied; }

    // A house on the street line from side to side, with a wing in the yard.
    BuildingPlan Terrace(const Site& site);
    // A house behind a front garden, sometimes with a shed at the back.
    BuildingPlan House(const Site& site);
    // A small hut somewhere on an allotment.
    BuildingPlan Hut(const Site& site);
    // One or two large halls.
    BuildingPlan Halls(const Site& site);
    // A church with its tower to the west, the length of its nave turned by at most a few gons.
    BuildingPlan Church(Point center);

  private:
    void Draw(const Ring& ring, int32_t code);
    bool Shed(const Site& site, double from);
    void Steps(const Site& site, Point wall);

    Drawing& drawing;
    Random& random;
    std::vector<Ring> occupied;
};

}  // namespace generate
