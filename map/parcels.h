// Parcels: what the boundary lines of a map enclose, with the numbers that lie inside, and what is wrong with
// them.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "map/boundary_net.h"
#include "map/box_tree.h"
#include "map/polygonizer.h"

namespace vemrado::map {

// Layers of the file whose lines bound parcels and whose texts are their numbers.
struct ParcelLayers {
    int boundaries = 1;
    int numbers = 2;
};

struct Parcel {
    Area area;
    std::string number;  // the first text inside, UTF-8; empty: none
    int texts = 0;       // number texts inside
};

struct ParcelNumber {
    Point place;
    std::string text;
    uint32_t source = 0;
};

// An end of a boundary that meets no other.
struct FreeEnd {
    static constexpr double farthestGap = 10;  // m

    Point place;
    double gap = 0;       // to the nearest other free end, m; infinite when that is farther than farthestGap
    uint32_t source = 0;  // of the boundary, where a sweep made it
};

struct Parcels {
    std::vector<Parcel> parcels;
    std::vector<FreeEnd> freeEnds;
    std::vector<Point> cutPieces;       // runs of boundary between others that close nothing
    std::vector<Point> crossings;       // boundaries that cross at no point of theirs
    std::vector<ParcelNumber> outside;  // numbers in no parcel
    bool tooManyCrossings = false;      // so many that no parcel was made
};

// Takes the boundaries and numbers of a map, or of many neighbours, and gives their parcels. Memory grows
// with the boundaries, by about 400 bytes a segment. Points are finite and at most 1e9 from 0.
class ParcelBuilder {
  public:
    // A stroke of two points or more; source is the number of the sheet that it comes from.
    void AddBoundary(std::span<const Point> stroke, uint32_t source = 0) { net.Add(stroke, source); }
    void AddNumber(Point place, std::string_view text, uint32_t source = 0) {
        numbers.push_back({place, std::string(text), source});
    }

    // The builder is used up.
    Parcels Build();

  private:
    BoundaryNet net;
    std::vector<ParcelNumber> numbers;
};

// Finds the parcel of a place.
class AreaFinder {
  public:
    static constexpr size_t nowhere = SIZE_MAX;

    // The parcels live longer than the finder and stay where they are.
    explicit AreaFinder(const std::vector<Parcel>& parcels);
    // Its number, or nowhere.
    size_t Find(Point place) const;

  private:
    const std::vector<Parcel>& parcels;
    BoxTree tree;
};

// Gives every number to the parcel that holds it, or to those outside.
void GiveNumbers(std::vector<ParcelNumber>& numbers, Parcels& made);

// How far free ends lie from each other.
std::vector<FreeEnd> MeasureGaps(const std::vector<Point>& ends);

}  // namespace vemrado::map
