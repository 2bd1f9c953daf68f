// What stands on a parcel: buildings, land-use marks, the parcel's number and the house's number.

#pragma once

#include "buildings.h"
#include "drawing.h"
#include "names.h"
#include "parcels.h"

namespace generate {

class Furnisher {
  public:
    // paper: metres on the ground for a millimetre on paper.
    Furnisher(const Names& names, Drawing& drawing, Random& random, double paper, int firstHouse)
        : names_(names),
          drawing_(drawing),
          random_(random),
          builder_(drawing, random),
          paper_(paper),
          nextHouse_(firstHouse) {}

    void Furnish(const BoundaryNet& net, Parcel& parcel);

  private:
    void FurnishHouse(const Parcel& parcel);
    void FurnishSquare(const Parcel& parcel);
    void FurnishPark(const Parcel& parcel);
    void FurnishLand(const Parcel& parcel);
    void FurnishPond(const Parcel& parcel);
    void FurnishSports(const Parcel& parcel);
    void Number(const Parcel& parcel, Point at);
    void Marks(int32_t symbol, double spacing, double largest, Point number);
    void Caption(const std::string& text, Point at, int32_t code, double height);
    bool IsFree(Point at, double clearance) const;
    bool HasRoom(Point at, Point along, double halfWidth, double halfHeight) const;
    void PlaceNear(Point wanted, double halfWidth, Point& at, double& gons) const;
    Point Inside() const;
    Path Closed(const Ring& ring) const;

    const Names& names_;
    Drawing& drawing_;
    Random& random_;
    Builder builder_;
    double paper_;
    int nextHouse_;
    Site site_;
};

}  // namespace generate
