// What stands on a parcel: buildings, land-use marks, the parcel's number and the house's number.

#pragma once

#include "buildings.h"
#include "drawing.h"
#include "names.h"
#include "parcels.h"

namespace generate {

class Furnisher {
  public:
    // millimetre: metres on the ground for one on paper.
    Furnisher(const Names& allNames, Drawing& sheet, Random& numbers, double millimetre, int firstHouse)
        : names(allNames),
          drawing(sheet),
          random(numbers),
          builder(sheet, numbers),
          paper(millimetre),
          numberClearance(Drawing::TextClearance(layerParcelNumbers) / 2 * millimetre),
          nextHouse(firstHouse) {}

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

    const Names& names;
    Drawing& drawing;
    Random& random;
    Builder builder;
    double paper;
    double numberClearance;  // from their parcel's boundary: half of that from each other
    int nextHouse;
    Site site;
};

}  // namespace generate
