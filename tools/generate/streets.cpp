#include "streets.h"

#include <algorithm>
#include <cmath>

#include "clearance.h"

namespace generate {

namespace {

constexpr double streamHalfWidth = 3.2;
// Blocks keep this distance in metres from the centre lines around them.
constexpr double blockClearance = 0.5;

// Land between streets that may still be divided. Edge i has side and margin i: the margin is the distance
// from the street's centre line to the boundary of the block.
//
// Tracts are simple rings and are divided into simple rings, so no two of them overlap. Each block lies
// inside its tract, so no two blocks do.
struct Tract {
    Ring ring;
    std::vector<Side> sides;
    std::vector<double> margins;

    void Add(Point point, Side side, double margin) {
        ring.push_back(point);
        sides.push_back(side);
        margins.push_back(margin);
    }
};

// Largest size of a block in metres, along and across.
struct BlockSize {
    double length;
    double width;
};

BlockSize LargestBlock(double town) {
    if (town < 0.3) return {115, 84};
    if (town < 0.95) return {185, 98};
    if (town < 1.4) return {230, 150};
    return {330, 260};
}

// Appends the points of a centre line except its last, forwards or backwards.
void AppendRoad(Tract& tract, const Path& path, bool forwards, Side side, double margin) {
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        tract.Add(forwards ? path[i] : path[path.size() - 1 - i], side, margin);
    }
}

// A tract divided along a path that runs inside it from a point on edge `from` to a point on edge `to`: the
// part on the left of the path when path and ring meet as a chord does.
Tract PartOf(const Tract& whole, std::size_t from, std::size_t to, const Path& path, Side side,
             double margin) {
    Tract part;
    part.Add(path.back(), whole.sides[from], whole.margins[from]);
    for (std::size_t i = from; i != to;) {
        i = i + 1 < whole.ring.size() ? i + 1 : 0;
        part.Add(whole.ring[i], whole.sides[i], whole.margins[i]);
    }
    for (std::size_t i = 0; i + 1 < path.size(); ++i) part.Add(path[i], side, margin);
    return part;
}

class Planner {
  public:
    Planner(const Country& land, Cell place, Random& numbers) : country(land), cell(place), random(numbers) {}

    StreetPlan Plan() {
        const Path north = country.RoadEast(cell);
        const Path south = country.RoadEast({cell.column, cell.row + 1});
        const Path west = country.RoadSouth(cell);
        const Path east = country.RoadSouth({cell.column + 1, cell.row});
        AddMainRoad(north, country.HalfWidthEast(cell), cell.row * int64_t{2});
        AddMainRoad(west, country.HalfWidthSouth(cell), cell.column * int64_t{2} + 1);

        Tract whole;
        AppendRoad(whole, south, true, Side::road, country.HalfWidthEast({cell.column, cell.row + 1}));
        AppendRoad(whole, east, false, Side::road, country.HalfWidthSouth({cell.column + 1, cell.row}));
        AppendRoad(whole, north, false, Side::road, country.HalfWidthEast(cell));
        AppendRoad(whole, west, true, Side::road, country.HalfWidthSouth(cell));
        plan.land = whole.ring;
        const auto stream = country.StreamThrough(cell);
        if (!stream || !DivideByStream(whole, *stream, east.size() - 1)) Divide(whole, 0);
        return std::move(plan);
    }

  private:
    void AddMainRoad(const Path& path, double halfWidth, int64_t line) {
        const uint64_t key = Random(country.Seed(), Subject::roadName, line).Next();
        plan.streets.push_back({path, halfWidth, true, key});
    }

    // The ring runs south, east (northwards), north (westwards), west (southwards), each road with its own
    // number of edges; the stream's ends are points of the western and eastern road. False when the stream
    // leaves the ring.
    bool DivideByStream(const Tract& whole, const Country::Stream& stream, std::size_t edgesOfRoad) {
        const std::size_t eastPoint = edgesOfRoad + (edgesOfRoad - stream.to);
        const std::size_t westPoint = 3 * edgesOfRoad + stream.from;
        Tract northern;
        for (std::size_t i = eastPoint; i < westPoint; ++i) {
            northern.Add(whole.ring[i], whole.sides[i], whole.margins[i]);
        }
        Tract southern;
        for (std::size_t i = westPoint; i < whole.ring.size() + eastPoint; ++i) {
            const std::size_t k = i % whole.ring.size();
            southern.Add(whole.ring[k], whole.sides[k], whole.margins[k]);
        }
        AppendRoad(northern, stream.path, true, Side::stream, streamHalfWidth);
        AppendRoad(southern, stream.path, false, Side::stream, streamHalfWidth);
        if (!IsSimple(northern.ring, 0) || !IsSimple(southern.ring, 0)) return false;
        plan.stream = stream.path;
        plan.streamHalfWidth = streamHalfWidth;
        Divide(northern, 0);
        Divide(southern, 0);
        return true;
    }

    void Divide(const Tract& tract, int depth) {
        const Frame frame = FrameOf(tract.ring);
        const double town = country.TownDistance(Centroid(tract.ring));
        const BlockSize limit = LargestBlock(town);
        const double tooLong = frame.length / (limit.length * random.Between(0.9, 1.15));
        const double tooWide = frame.width / (limit.width * random.Between(0.9, 1.15));
        if (std::max(tooLong, tooWide) <= 1 || depth > 12) return Finish(tract, town);

        const bool across = tooLong >= tooWide;
        const Point axis = across ? frame.along : frame.across;
        const double extent = across ? frame.length : frame.width;
        const Point through = Centroid(tract.ring) + axis * (extent * random.Between(-0.11, 0.11));
        const Point direction = Rotated(Left(axis), random.Between(-0.07, 0.07));
        Chord chord;
        if (!Contains(tract.ring, through) || !FindChord(tract.ring, through, direction, chord)) {
            return Finish(tract, town);
        }
        DivideByStreet(tract, chord, town, depth);
    }

    void DivideByStreet(const Tract& tract, const Chord& chord, double town, int depth) {
        const Side side = town < 1.25 ? Side::road : Side::track;
        const double halfWidth = side == Side::track ? 2.0 : depth < 2 ? 4.6 : 3.8;
        const double length = Length(chord.ahead.at - chord.behind.at);
        std::vector<double> offsets;
        if (length > 50) {
            const double bow = random.Between(-0.035, 0.035) * length;
            const double swing = random.Between(-0.012, 0.012) * length;
            offsets = {0.6 * bow + swing, 0.92 * bow + swing * 0.6, bow, 0.92 * bow - swing * 0.6,
                       0.6 * bow - swing};
        }
        for (const std::vector<double>& bend : {offsets, {}}) {
            const Path path = Bent(chord.behind.at, chord.ahead.at, bend);
            const Path back(path.rbegin(), path.rend());
            const Tract left = PartOf(tract, chord.ahead.edge, chord.behind.edge, path, side, halfWidth);
            const Tract right = PartOf(tract, chord.behind.edge, chord.ahead.edge, back, side, halfWidth);
            // A bent street may leave a bent tract; a straight one does not.
            if (!IsSimple(left.ring, 0) || !IsSimple(right.ring, 0)) continue;
            if (side == Side::road) plan.streets.push_back({path, halfWidth, false, random.Next()});
            Divide(left, depth + 1);
            Divide(right, depth + 1);
            return;
        }
        Finish(tract, town);
    }

    // Cuts the corners between roads, as sight lines ask for. Land whose margins leave no sound block is a
    // part of the streets around it.
    void Finish(const Tract& tract, double town) {
        std::vector<std::size_t> kept;
        const Ring inner = Inset(tract.ring, tract.margins, kept);
        if (inner.size() < 3 || Area(inner) < 150) return;
        Block block;
        block.town = town;
        const std::size_t count = inner.size();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t before = i > 0 ? i - 1 : count - 1;
            const std::size_t after = i + 1 < count ? i + 1 : 0;
            const Side in = tract.sides[kept[before]];
            const Side out = tract.sides[kept[i]];
            const Point toBefore = inner[before] - inner[i];
            const Point toAfter = inner[after] - inner[i];
            const double turn = Cross(Unit(inner[i] - inner[before]), Unit(toAfter));
            const double cut = in == Side::road && out == Side::road ? 2.4 : 0;
            if (cut > 0 && turn > 0.6 && Length(toBefore) > 3 * cut && Length(toAfter) > 3 * cut) {
                block.outline.push_back(inner[i] + Unit(toBefore) * cut);
                block.sides.push_back(out);
                block.outline.push_back(inner[i] + Unit(toAfter) * cut);
                block.sides.push_back(out);
            } else {
                block.outline.push_back(inner[i]);
                block.sides.push_back(out);
            }
        }
        if (IsThin(block.outline) || !IsSimple(block.outline) ||
            !LiesInside(block.outline, tract.ring, blockClearance))
            return;
        plan.blocks.push_back(std::move(block));
    }

    const Country& country;
    const Cell cell;
    Random& random;
    StreetPlan plan;
};

}  // namespace

StreetPlan PlanStreets(const Country& country, Cell cell, Random& random) {
    return Planner(country, cell, random).Plan();
}

std::vector<KerbPoint> KerbOf(const Block& block, double pavement) {
    std::vector<KerbPoint> kerb;
    const std::size_t count = block.outline.size();
    std::size_t first = 0;  // the edge after one without a road, when there is one
    for (std::size_t i = 0; i < count; ++i) {
        if (block.sides[i] != Side::road) first = i + 1;
    }
    bool drawing = false;
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t i = (first + step) % count;
        if (block.sides[i] != Side::road) {
            drawing = false;
            continue;
        }
        const Point from = block.outline[i];
        const Point to = block.outline[(i + 1) % count];
        const Point out = Left(Unit(to - from)) * -pavement;
        if (!drawing) {
            kerb.push_back({from + out, true, 0});
        } else {
            // Round the corner between the edge before and this one when it turns visibly.
            const Point last = kerb.back().at;
            const Point next = from + out;
            if (Length(next - last) > 0.4) {
                const Point bulge = Unit(Middle(last, next) - from) * pavement;
                kerb.push_back({from + bulge, false, pavement});
                kerb.push_back({next, false, pavement});
            }
        }
        kerb.push_back({to + out, false, 0});
        drawing = true;
    }
    return kerb;
}

}  // namespace generate
