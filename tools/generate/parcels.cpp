#include "parcels.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace generate {

namespace {

// A chance table: the first row whose running sum passes a number from 0 to 1 gives the use.
struct UseChance {
    ParcelUse use;
    double chance;
};

constexpr std::array<UseChance, 4> usesInTown{
    {{ParcelUse::house, 0.86}, {ParcelUse::park, 0.06}, {ParcelUse::works, 0.05}, {ParcelUse::sports, 0.03}}};
constexpr std::array<UseChance, 7> usesAtEdge{{{ParcelUse::house, 0.40},
                                               {ParcelUse::allotment, 0.18},
                                               {ParcelUse::orchard, 0.12},
                                               {ParcelUse::meadow, 0.10},
                                               {ParcelUse::works, 0.08},
                                               {ParcelUse::cemetery, 0.06},
                                               {ParcelUse::vineyard, 0.06}}};
constexpr std::array<UseChance, 7> usesOutside{{{ParcelUse::arable, 0.44},
                                                {ParcelUse::coniferousForest, 0.13},
                                                {ParcelUse::broadleafForest, 0.11},
                                                {ParcelUse::pasture, 0.10},
                                                {ParcelUse::vineyard, 0.10},
                                                {ParcelUse::orchard, 0.07},
                                                {ParcelUse::hopGarden, 0.05}}};

template <std::size_t count>
ParcelUse Choose(const std::array<UseChance, count>& table, double number) {
    for (const UseChance& row : table) {
        if (number < row.chance) return row.use;
        number -= row.chance;
    }
    return table[0].use;
}

// Width in metres of the strips into which land outside the town is parted.
double StripWidth(ParcelUse use) {
    switch (use) {
        case ParcelUse::vineyard:
            return 24;
        case ParcelUse::allotment:
            return 13;
        case ParcelUse::orchard:
        case ParcelUse::hopGarden:
            return 45;
        case ParcelUse::coniferousForest:
        case ParcelUse::broadleafForest:
            return 110;
        case ParcelUse::meadow:
        case ParcelUse::pasture:
            return 70;
        default:
            return 38;
    }
}

}  // namespace

bool FrontOf(const Ring& ring, const std::vector<Side>& sides, Front& front) {
    const auto isFront = [&](std::size_t i) { return sides[i] == Side::road || sides[i] == Side::track; };
    double longest = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point edge = ring[(i + 1) % ring.size()] - ring[i];
        if (!isFront(i) || Length(edge) <= longest) continue;
        longest = Length(edge);
        front.along = Unit(edge);
    }
    if (longest == 0) return false;
    front.inwards = Left(front.along);
    front.length = 0;
    Point sum;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point edge = ring[(i + 1) % ring.size()] - ring[i];
        const double share = Dot(edge, front.along);
        if (!isFront(i) || share < 0.85 * Length(edge)) continue;
        sum = sum + (Middle(ring[i], ring[(i + 1) % ring.size()]) - ring[0]) * share;
        front.length += share;
    }
    front.middle = ring[0] + sum * (1 / front.length);
    front.depth = 0;
    for (const Point& point : ring)
        front.depth = std::max(front.depth, Dot(point - front.middle, front.inwards));
    return true;
}

ParcelUse ParcelPlanner::UseOf(const Block& block) {
    const double number = random.Unit();
    const Point center = Centroid(block.outline);
    if (block.town < 0.3) {
        return Contains(block.outline, country.NearestTown(center)) ? ParcelUse::square : ParcelUse::terrace;
    }
    if (block.town < 0.95) return Choose(usesInTown, number);
    const bool byStream =
        std::find(block.sides.begin(), block.sides.end(), Side::stream) != block.sides.end();
    if (byStream && number < 0.75) return number < 0.2 ? ParcelUse::pond : ParcelUse::meadow;
    return block.town < 1.25 ? Choose(usesAtEdge, number) : Choose(usesOutside, number);
}

void ParcelPlanner::Divide(const Block& block, std::vector<Parcel>& parcels) {
    const ParcelUse use = UseOf(block);
    const BoundaryNet::Face face = net.AddOutline(block.outline, block.sides);
    const Frame frame = FrameOf(block.outline);
    switch (use) {
        case ParcelUse::terrace:
            return DivideIntoPlots(face, block, use, random.Between(10, 15), parcels);
        case ParcelUse::house:
            return DivideIntoPlots(face, block, use, random.Between(17, 25), parcels);
        case ParcelUse::square:
        case ParcelUse::park:
        case ParcelUse::cemetery:
        case ParcelUse::sports:
        case ParcelUse::pond:
            parcels.push_back({face, use, numbers.Next(), block.town});
            return;
        case ParcelUse::works:
            return AddStrips(face, frame.along, 75, use, block.town, parcels);
        case ParcelUse::allotment:
            return DivideIntoPlots(face, block, use, random.Between(11, 15), parcels);
        default:
            return AddStrips(face, frame.along, StripWidth(use) * random.Between(0.8, 1.25), use, block.town,
                             parcels);
    }
}

// Two rows of plots, back to back, where the block is deep enough; one row otherwise.
void ParcelPlanner::DivideIntoPlots(const BoundaryNet::Face& face, const Block& block, ParcelUse use,
                                    double frontage, std::vector<Parcel>& parcels) {
    const Frame frame = FrameOf(block.outline);
    std::vector<BoundaryNet::Face> rows;
    BoundaryNet::Face whole = face;
    BoundaryNet::Face left;
    BoundaryNet::Face right;
    const Point center = Centroid(block.outline);
    const Point through = center + frame.across * (frame.width * random.Between(-0.07, 0.07));
    const Point direction = Rotated(frame.along, random.Between(-0.03, 0.03));
    if (frame.width > 38 && Contains(block.outline, through) &&
        net.Cut(whole, through, direction, 3, left, right)) {
        rows = {left, right};
    } else {
        rows = {whole};
    }
    for (const BoundaryNet::Face& row : rows) {
        std::vector<BoundaryNet::Face> plots;
        DivideStrip(row, frame.along, frontage, plots);
        for (BoundaryNet::Face& plot : plots) AddPlot(std::move(plot), use, block.town, parcels);
    }
}

void ParcelPlanner::DivideStrip(const BoundaryNet::Face& face, Point along, double target,
                                std::vector<BoundaryNet::Face>& strips) {
    BoundaryNet::Face whole = face;
    net.Refine(whole);
    Ring ring;
    std::vector<Side> sides;
    net.Outline(whole, ring, sides);
    double low = 1e9;
    double high = -1e9;
    for (const Point& point : ring) {
        low = std::min(low, Dot(point - ring[0], along));
        high = std::max(high, Dot(point - ring[0], along));
    }
    const int count = static_cast<int>((high - low) / target + random.Between(0.3, 0.7));
    if (count > 1) {
        const int before = count / 2 + (count % 2 != 0 && random.Chance(0.5) ? 1 : 0);
        const double share = (before + random.Between(-0.14, 0.14)) / count;
        const Point center = Centroid(ring);
        const Point through = center + along * (low + (high - low) * share - Dot(center - ring[0], along));
        const Point direction = Rotated(Left(along), random.Between(-0.025, 0.025));
        BoundaryNet::Face left;
        BoundaryNet::Face right;
        if (Contains(ring, through) && net.Cut(whole, through, direction, 2.2, left, right)) {
            DivideStrip(left, along, target, strips);
            DivideStrip(right, along, target, strips);
            return;
        }
    }
    strips.push_back(std::move(whole));
}

// A plot with a deep back land becomes a house's parcel and its garden.
void ParcelPlanner::AddPlot(BoundaryNet::Face face, ParcelUse use, double town,
                            std::vector<Parcel>& parcels) {
    const ParcelNumber number = numbers.Next();
    Ring ring;
    std::vector<Side> sides;
    net.Refine(face);
    net.Outline(face, ring, sides);
    Front front;
    if (use == ParcelUse::allotment) {
        parcels.push_back({std::move(face), use, number, town});
        return;
    }
    if (!FrontOf(ring, sides, front)) {
        parcels.push_back({std::move(face), ParcelUse::garden, number, town});
        return;
    }
    const double yard = use == ParcelUse::terrace ? random.Between(19, 24) : random.Between(21, 27);
    const Point through = front.middle + front.inwards * yard;
    BoundaryNet::Face back;
    BoundaryNet::Face house;
    if (front.depth > yard + 11 && Contains(ring, through) &&
        net.Cut(face, through, front.along, 1.5, back, house)) {
        parcels.push_back({std::move(house), use, {number.stem, number.sub + 1}, town});
        parcels.push_back({std::move(back), ParcelUse::garden, {number.stem, number.sub + 2}, town});
        return;
    }
    parcels.push_back({std::move(face), use, number, town});
}

void ParcelPlanner::AddStrips(const BoundaryNet::Face& face, Point along, double target, ParcelUse use,
                              double town, std::vector<Parcel>& parcels) {
    std::vector<BoundaryNet::Face> strips;
    DivideStrip(face, along, target, strips);
    ParcelNumber number = numbers.Next();
    if (strips.size() > 1) ++number.sub;
    for (BoundaryNet::Face& strip : strips) {
        // Some neighbours grow other things than the rest.
        const bool odd = strips.size() > 3 && use != ParcelUse::works && random.Chance(0.12);
        parcels.push_back({std::move(strip), odd ? ParcelUse::meadow : use, number, town});
        if (++number.sub % ParcelNumbers::subsOfStem == 0) number = numbers.Next();
    }
}

}  // namespace generate
