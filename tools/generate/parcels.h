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

struct ParcelNumber {
    int stem = 0;
    int sub = 0;  // stem/sub; 0: the stem alone
};

// Gives out the parcel numbers of a sheet. Each sheet has numbers of its own, so that no two parcels of a map
// share one. When a sheet has used up its numbers they are divided further, the first as 1/101.
class ParcelNumbers {
  public:
    static constexpr int stemsOfSheet = 500;
    static constexpr int subsOfStem = 100;

    explicit ParcelNumbers(int64_t sheet) : first(1 + static_cast<int>(sheet) * stemsOfSheet) {}

    // Another number; parts of the parcel add 1 to 99 to its sub.
    ParcelNumber Next() {
        const ParcelNumber number{first + given % stemsOfSheet, given / stemsOfSheet * subsOfStem};
        ++given;
        return number;
    }

  private:
    int first;
    int given = 0;
};

struct Parcel {
    BoundaryNet::Face face;
    ParcelUse use = ParcelUse::arable;
    ParcelNumber number;
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
    ParcelPlanner(const Country& land, BoundaryNet& boundaries, Random& chances, int64_t sheet)
        : country(land), net(boundaries), random(chances), numbers(sheet) {}

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
    ParcelNumbers numbers;
};

}  // namespace generate
