#include "furnishing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "clearance.h"

namespace generate {

namespace {

int32_t MarkOf(ParcelUse use) {
    switch (use) {
        case ParcelUse::garden:
        case ParcelUse::allotment:
            return symbolGarden;
        case ParcelUse::orchard:
            return symbolOrchard;
        case ParcelUse::vineyard:
            return symbolVineyard;
        case ParcelUse::hopGarden:
            return symbolHopGarden;
        case ParcelUse::meadow:
            return symbolMeadow;
        case ParcelUse::pasture:
            return symbolPasture;
        case ParcelUse::broadleafForest:
            return symbolBroadleafForest;
        case ParcelUse::coniferousForest:
            return symbolConiferousForest;
        case ParcelUse::park:
            return symbolPark;
        case ParcelUse::cemetery:
            return symbolCemetery;
        case ParcelUse::sports:
            return symbolSports;
        default:
            return 0;
    }
}

// Height of the layer's default text, in millimetres on paper, and the width of its letters in heights.
constexpr double numberHeight = 1.7;
constexpr double letterWidth = 0.62;

}  // namespace

void Furnisher::Furnish(const BoundaryNet& net, Parcel& parcel) {
    net.Refine(parcel.face);
    net.Outline(parcel.face, site.ring, site.sides);
    builder.StartParcel();
    site.hasFront = FrontOf(site.ring, site.sides, site.front);
    switch (parcel.use) {
        case ParcelUse::terrace:
        case ParcelUse::house:
        case ParcelUse::works:
            return FurnishHouse(parcel);
        case ParcelUse::square:
            return FurnishSquare(parcel);
        case ParcelUse::park:
            return FurnishPark(parcel);
        case ParcelUse::pond:
            return FurnishPond(parcel);
        case ParcelUse::sports:
            return FurnishSports(parcel);
        default:
            return FurnishLand(parcel);
    }
}

bool Furnisher::IsFree(Point at, double clearance) const {
    return Contains(site.ring, at) && DistanceToOutline(site.ring, at) >= clearance;
}

Point Furnisher::Inside() const {
    const Point center = Centroid(site.ring);
    if (IsFree(center, 1)) return center;
    // A bent parcel: the middle of a chord through one of its edges' middles.
    for (std::size_t i = 0; i < site.ring.size(); ++i) {
        const Point edge = site.ring[(i + 1) % site.ring.size()] - site.ring[i];
        const Point start = Middle(site.ring[i], site.ring[i] + edge) + Left(Unit(edge)) * 0.5;
        Chord chord;
        if (!Contains(site.ring, start) || !FindChord(site.ring, start, Left(Unit(edge)), chord)) continue;
        const Point middle = Middle(chord.ahead.at, chord.behind.at);
        if (IsFree(middle, 1)) return middle;
    }
    return PointInside(site.ring);
}

Path Furnisher::Closed(const Ring& ring) const {
    Path path = ring;
    path.push_back(ring[0]);
    return path;
}

// True when a text's box lies inside the parcel and clear of its buildings.
bool Furnisher::HasRoom(Point at, Point along, double halfWidth, double halfHeight) const {
    if (!IsFree(at, numberClearance)) return false;
    for (const double x : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
        for (const double y : {-1.0, 1.0}) {
            const Point corner = at + along * (x * halfWidth) + Left(along) * (y * halfHeight);
            if (!Contains(site.ring, corner)) return false;
            for (const Ring& building : builder.Occupied()) {
                if (Contains(building, corner)) return false;
            }
        }
    }
    return true;
}

// The nearest of some places around the wanted one that has room, level when possible, else along the parcel.
// Where none has the place is inside the parcel at least, half as far from its boundary as numbers must be
// from each other.
void Furnisher::PlaceNear(Point wanted, double halfWidth, Point& at, double& gons) const {
    constexpr std::array<double, 13> steps{0, 2, -2, 4, -4, 6.5, -6.5, 9, -9, 13, -13, 17, -17};
    const Point inwards = site.hasFront ? site.front.inwards : Point{0, 1};
    const double halfHeight = 0.75 * numberHeight * paper;
    const Point upright = Rotated({1, 0}, ReadableGons(inwards) * std::numbers::pi / 200);
    for (const Point along : {Point{1, 0}, upright}) {
        for (const double depth : steps) {
            for (const double aside : steps) {
                at = wanted + inwards * depth + Left(inwards) * aside;
                if (!HasRoom(at, along, halfWidth, halfHeight)) continue;
                gons = along.east < 1 ? ReadableGons(inwards) : 0;
                return;
            }
        }
    }
    at = IsFree(wanted, numberClearance) ? wanted : PointInside(site.ring);
    gons = 0;
}

void Furnisher::Number(const Parcel& parcel, Point wanted) {
    std::string text = std::to_string(parcel.number.stem);
    if (parcel.number.sub > 0) text.append("/").append(std::to_string(parcel.number.sub));
    const double width = static_cast<double>(text.size()) * letterWidth * numberHeight * paper;
    Point at;
    double gons = 0;
    PlaceNear(wanted, width / 2 + 0.3, at, gons);
    drawing.AddText(layerParcelNumbers, at, text, 0, gons);
}

void Furnisher::FurnishHouse(const Parcel& parcel) {
    BuildingPlan plan;
    if (site.hasFront) {
        switch (parcel.use) {
            case ParcelUse::terrace:
                plan = builder.Terrace(site);
                break;
            case ParcelUse::works:
                plan = builder.Halls(site);
                break;
            default:
                plan = builder.House(site);
        }
    }
    if (!plan.built) return FurnishLand(parcel);
    if (parcel.use == ParcelUse::works) {
        drawing.AddText(layerHouseNumbers, plan.center, std::to_string(nextHouse++), 0, 0);
        drawing.AddSymbol(layerBuildingMarks, plan.center - Point{0, 3 * paper}, symbolMasonry);
        if (random.Chance(0.3)) Caption(names.works, plan.center + Point{0, 3 * paper}, textRemark, 1.7);
    } else {
        const double gons = ReadableGons(site.front.along);
        drawing.AddText(layerHouseNumbers, plan.center + Point{0, 1.1 * paper}, std::to_string(nextHouse++),
                        0, parcel.use == ParcelUse::terrace ? ReadableGons(site.front.inwards) : 0);
        const bool timber = parcel.use == ParcelUse::house && random.Chance(0.08);
        drawing.AddSymbol(layerBuildingMarks, plan.center - Point{0, 1.7 * paper},
                          timber ? symbolTimber : symbolMasonry, gons);
    }
    const double depth = plan.back + std::max(2.4 * paper, (site.front.depth - plan.back) * 0.5);
    Point at = site.front.middle + site.front.inwards * depth;
    if (!Contains(site.ring, at)) at = Inside();
    Number(parcel, at);
    if (parcel.use == ParcelUse::house && random.Chance(0.12)) {
        const Point well = at + site.front.along * (random.Between(3, 5) * paper);
        if (IsFree(well, 1)) drawing.AddSymbol(layerBuildingMarks, well, symbolWell);
    }
}

void Furnisher::FurnishSquare(const Parcel& parcel) {
    const Point center = Inside();
    const Point churchAt = center + Point{-6, 6};
    if (IsFree(churchAt, 22)) {
        builder.Church(churchAt);
        drawing.AddSymbol(layerBuildingMarks, churchAt, symbolChurch);
        Caption(names.church, churchAt + Point{0, -9.5}, textRemark, 1.7);
    }
    const Frame frame = FrameOf(site.ring);
    for (const double share : {-0.36, -0.24, 0.24, 0.36}) {
        for (const double side : {-0.3, 0.3}) {
            const Point tree =
                frame.center + frame.along * (frame.length * share) + frame.across * (frame.width * side);
            if (IsFree(tree, 4)) drawing.AddSymbol(layerBuildingMarks, tree, symbolBroadleafTree);
        }
    }
    const Point monument = center + Point{26, -12};
    if (IsFree(monument, 3)) drawing.AddSymbol(layerBuildingMarks, monument, symbolMonument);
    Number(parcel, center + Point{26, 6});
    Caption(names.square, center + Point{-2, -19}, textRoad, 3.4);
}

// Paths cross in the middle of the park, between rows of trees.
void Furnisher::FurnishPark(const Parcel& parcel) {
    const Frame frame = FrameOf(site.ring);
    const Point center = Inside();
    for (const Point direction : {Unit(frame.along * frame.length + frame.across * frame.width),
                                  Unit(frame.along * frame.length - frame.across * frame.width)}) {
        Chord chord;
        if (!FindChord(site.ring, center, direction, chord)) continue;
        const Point side = Left(direction) * 1.2;
        for (const double sign : {-1.0, 1.0}) {
            const Point from = center + direction * (chord.behind.distance + 1.5) + side * sign;
            const Point to = center + direction * (chord.ahead.distance - 1.5) + side * sign;
            drawing.AddPath(layerNames, Bent(from, to, {2.0 * sign}), codePath, 'K');
        }
    }
    const Point number = center + frame.across * (frame.width * 0.3);
    Marks(symbolPark, 21, 60, number);
    drawing.AddSymbol(layerBuildingMarks, center, symbolMonument);
    Number(parcel, number);
    Caption(names.park, center - frame.across * (frame.width * 0.32), textSmallName, 2.9);
}

void Furnisher::FurnishLand(const Parcel& parcel) {
    const double area = Area(site.ring);
    const int32_t mark = MarkOf(parcel.use);
    Point at = Inside();
    if (parcel.use == ParcelUse::allotment && site.hasFront && random.Chance(0.7)) {
        const BuildingPlan hut = builder.Hut(site);
        const double depth = (hut.back + site.front.depth) / 2;
        const Point behind = site.front.middle + site.front.inwards * depth;
        if (hut.built && IsFree(behind, 1)) at = behind;
    }
    Number(parcel, at);
    if (mark == 0) return;
    if (area > 2500 * paper) {
        Marks(mark, 27, 45, at);
    } else {
        for (const double offset : {3.6, -3.6, 5.0, -5.0}) {
            const Point place = at + (site.hasFront ? site.front.inwards : Point{0, 1}) * (offset * paper);
            if (!IsFree(place, 1.5 * paper)) continue;
            drawing.AddSymbol(layerLandUse, place, mark);
            break;
        }
    }
    if (parcel.use == ParcelUse::garden && area > 250 && random.Chance(0.2)) {
        const Frame frame = FrameOf(site.ring);
        Chord chord;
        const Point through = Inside() + frame.along * (frame.length * 0.28);
        if (IsFree(through, 2) && FindChord(site.ring, through, frame.across, chord)) {
            drawing.AddPath(layerFences, {chord.behind.at, chord.ahead.at}, codeFence);
        }
    }
    if (parcel.use == ParcelUse::cemetery) {
        Caption(names.cemetery, at + Point{0, 5 * paper}, textRemark, 1.7);
        std::vector<std::size_t> kept;
        const Ring wall = Inset(site.ring, std::vector<double>(site.ring.size(), 1.5), kept);
        if (wall.size() > 3) drawing.AddRing(layerFences, wall, codeWall);
    }
}

// A pond's shore is a smooth curve inside its parcel.
void Furnisher::FurnishPond(const Parcel& parcel) {
    const Frame frame = FrameOf(site.ring);
    const Point center = Inside();
    constexpr std::size_t steps = 40;
    std::array<Point, steps> directions;
    std::array<double, steps> room{};
    const double phase = random.Between(0, 2 * std::numbers::pi);
    for (std::size_t i = 0; i < steps; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / steps;
        directions[i] = frame.along * std::cos(angle) + frame.across * std::sin(angle);
        Chord chord;
        if (!FindChord(site.ring, center, directions[i], chord)) return FurnishLand(parcel);
        room[i] = chord.ahead.distance * (0.78 + 0.07 * std::sin(3 * angle + phase));
    }
    // Corners of the parcel are cut off by taking the least room around, then the mean of that.
    std::array<double, steps> least{};
    Ring shore(steps);
    constexpr std::size_t reach = 3;
    for (std::size_t i = 0; i < steps; ++i) {
        least[i] = room[i];
        for (std::size_t k = 0; k <= 2 * reach; ++k)
            least[i] = std::min(least[i], room[(i + steps + k - reach) % steps]);
    }
    for (std::size_t i = 0; i < steps; ++i) {
        double sum = 0;
        for (std::size_t k = 0; k <= 2 * reach; ++k) sum += least[(i + steps + k - reach) % steps];
        shore[i] = center + directions[i] * (sum / (2 * reach + 1));
    }
    drawing.AddPath(layerWater, Closed(shore), codeWaterEdge, 'C');
    for (const double share : {-0.22, 0.22}) {
        const Point at = center + frame.along * (frame.length * share);
        if (Contains(shore, at)) drawing.AddSymbol(layerLandUse, at, symbolStillWater);
    }
    Number(parcel, center - Point{0, 3 * paper});
    Caption(names.pond, center + Point{0, 3 * paper}, textWater, 4.4);
}

void Furnisher::FurnishSports(const Parcel& parcel) {
    const Frame frame = FrameOf(site.ring);
    const double halfLength = std::min(52.0, frame.length * 0.36);
    const double halfWidth = std::min(34.0, frame.width * 0.34);
    const auto at = [&](double x, double y) {
        return frame.center + frame.along * (x * halfLength) + frame.across * (y * halfWidth);
    };
    const Ring field{at(-1, -1), at(1, -1), at(1, 1), at(-1, 1)};
    if (std::all_of(field.begin(), field.end(), [&](Point point) { return IsFree(point, 1); })) {
        drawing.AddRing(layerFences, field, codeLandUseLimit);
        drawing.AddPath(layerFences, {at(0, -1), at(0, 1)}, codeLandUseLimit);
    }
    drawing.AddSymbol(layerLandUse, at(0.5, 0), symbolSports);
    Number(parcel, at(-0.5, 0));
    Caption(names.sports, at(-0.5, 0) + Point{0, 4 * paper}, textRemark, 1.7);
}

// Marks in staggered rows over the whole parcel, clear of its number.
void Furnisher::Marks(int32_t symbol, double spacing, double largest, Point number) {
    const Frame frame = FrameOf(site.ring);
    const double wanted = std::sqrt(frame.length * frame.width / 36.0);
    const double step = std::clamp(wanted, spacing * paper, largest * paper);
    const int rows = static_cast<int>(frame.width / step / 2) + 1;
    const int columns = static_cast<int>(frame.length / step / 2) + 1;
    for (int row = -rows; row <= rows; ++row) {
        for (int column = -columns; column <= columns; ++column) {
            const double shift = (row % 2 != 0 ? 0.5 : 0.0) + random.Between(-0.08, 0.08);
            const Point place = frame.center + frame.along * ((column + shift) * step) +
                                frame.across * ((row + random.Between(-0.08, 0.08)) * step);
            if (!IsFree(place, 3.2 * paper) || Length(place - number) < 5.5 * paper) continue;
            drawing.AddSymbol(layerLandUse, place, symbol);
        }
    }
}

void Furnisher::Caption(const std::string& text, Point at, int32_t code, double height) {
    const double width = static_cast<double>(text.size()) * letterWidth * height * paper;
    Chord chord;
    double gons = 0;
    if (Contains(site.ring, at) && FindChord(site.ring, at, {1, 0}, chord) &&
        chord.ahead.distance - chord.behind.distance < width) {
        gons = ReadableGons(FrameOf(site.ring).along);
    }
    drawing.AddText(layerNames, at, text, code, gons);
}

}  // namespace generate
