// Blocks divided into parcels: terraces in a town's core, houses with gardens around it, strips of fields
// outside.

#pragma once

#include <vector>

#include "boundary_net.h"
#include "country.h"
#include "random.h"
#include "streets.h"

namespace generate {

enum class ParcelUse : uint8_t {
    square,
    terrace,
    house,
    garden,
    allotment,
    works,
    park,
    cemetery,
    sports,
    orchard,
    vineyard,
    hopGarden,
    meadow,
    pasture,
    arable,
    broadleafForest,
    coniferousForest,
    pond,
};

struct Parcel {
    BoundaryNet::Face face;
    ParcelUse use = ParcelUse::arable;
    int stem = 0;  // parcel number stem/sub; sub 0: the stem alone
    int sub = 0;
    double town = 0;
};

// How a parcel lies on its street.
struct Front {
    Point middle;   // of the street side
    Point along;    // along the street, the parcel on its left
    Point inwards;  // away from the street
    double length = 0;
    double depth = 0;
};
// False when no edge of the ring is on a street or track.
bool FrontOf(const Ring& ring, const std::vector<Side>& sides, Front& front);

class ParcelPlanner {
  public:
    ParcelPlanner(const Country& land, BoundaryNet& boundaries, Random& numbers, int firstNumber)
        : country(land), net(boundaries), random(numbers), nextStem(firstNumber) {}

    void Divide(const Block& block, std::vector<Parcel>& parcels);

  private:
    ParcelUse UseOf(const Block& block);
    void DivideIntoPlots(const BoundaryNet::Face& face, const Block& block, ParcelUse use, double frontage,
                         std::vector<Parcel>& parcels);
    void DivideStrip(const BoundaryNet::Face& face, Point along, double target,
                     std::vector<BoundaryNet::Face>& strips);
    void AddPlot(BoundaryNet::Face face, ParcelUse use, double town, std::vector<Parcel>& parcels);
    void AddStrips(const BoundaryNet::Face& face, Point along, double target, ParcelUse use, double town,
                   std::vector<Parcel>& parcels);

    const Country& country;
    BoundaryNet& net;
    Random& random;
    int nextStem;
};

}  // namespace generate
