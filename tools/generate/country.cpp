#include "country.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "random.h"

namespace generate {

namespace {

// The country's extent in metres; its corner is placed so that all of it has S-JTSK coordinates
// (sheet_writer.cpp).
constexpr double countryWidth = 240000;
constexpr double countryHeight = 250000;

// Towns stand one in each rectangle of this size.
constexpr double townSpacingEast = 2100;
constexpr double townSpacingNorth = 1700;

constexpr std::size_t roadPoints = 9;

int FloorDivide(double value, double step) {
    return static_cast<int>(std::floor(value / step));
}

}  // namespace

Cell CellOfSheet(int64_t sheet) {
    auto shell = static_cast<int64_t>(std::sqrt(static_cast<double>(sheet)));
    while (shell * shell > sheet) --shell;
    while ((shell + 1) * (shell + 1) <= sheet) ++shell;
    const int64_t rest = sheet - shell * shell;
    if (rest <= shell) return {static_cast<int>(shell), static_cast<int>(rest)};
    return {static_cast<int>(2 * shell - rest), static_cast<int>(shell)};
}

int64_t SheetOfCell(Cell cell) {
    const int64_t shell = std::max(cell.column, cell.row);
    return shell * shell + (cell.row <= cell.column ? cell.row : 2 * shell - cell.column);
}

int Country::LatticeSize() const {
    return static_cast<int>(std::min(countryWidth / width, countryHeight / height));
}

Point Country::Node(Cell node) const {
    Random random(seed, Subject::latticeNode, node.column, node.row);
    const double east = node.column + random.Between(-0.09, 0.09);
    const double south = node.row + random.Between(-0.09, 0.09);
    return {east * width, -south * height};
}

Path Country::Road(Cell from, Cell to, int direction) const {
    Random random(seed, Subject::latticeEdge, from.column * int64_t{2} + direction, from.row);
    const Point start = Node(from);
    const Point end = Node(to);
    const double length = Length(end - start);
    const double bow = random.Between(-0.055, 0.055) * length;
    const double swing = random.Between(-0.03, 0.03) * length;
    std::vector<double> offsets;
    for (std::size_t i = 1; i + 1 < roadPoints; ++i) {
        const double angle = std::numbers::pi * static_cast<double>(i) / static_cast<double>(roadPoints - 1);
        offsets.push_back(bow * std::sin(angle) + swing * std::sin(2 * angle));
    }
    return Bent(start, end, offsets);
}

Path Country::RoadEast(Cell node) const {
    return Road(node, {node.column + 1, node.row}, 0);
}

Path Country::RoadSouth(Cell node) const {
    return Road(node, {node.column, node.row + 1}, 1);
}

double Country::HalfWidth(Point place, int latticeLine) const {
    if (TownDistance(place) < 1.1) return 6.0;
    return latticeLine % 3 == 0 ? 5.0 : 3.5;
}

double Country::HalfWidthEast(Cell node) const {
    return HalfWidth(Middle(Node(node), Node({node.column + 1, node.row})), node.row);
}

double Country::HalfWidthSouth(Cell node) const {
    return HalfWidth(Middle(Node(node), Node({node.column, node.row + 1})), node.column);
}

Point Country::TownCenter(int column, int row, double& radius) const {
    Random random(seed, Subject::town, column, row);
    const double east = column + random.Between(0.2, 0.4);
    const double south = row + random.Between(0.2, 0.4);
    radius = random.Between(380, 560);
    return {east * townSpacingEast, -south * townSpacingNorth};
}

double Country::TownDistance(Point place) const {
    const int column = FloorDivide(place.east, townSpacingEast);
    const int row = FloorDivide(-place.north, townSpacingNorth);
    double best = 100;
    for (int c = column - 1; c <= column + 1; ++c) {
        for (int r = row - 1; r <= row + 1; ++r) {
            double radius = 0;
            const Point center = TownCenter(c, r, radius);
            best = std::min(best, Length(place - center) / radius);
        }
    }
    return best;
}

Point Country::NearestTown(Point place) const {
    const int column = FloorDivide(place.east, townSpacingEast);
    const int row = FloorDivide(-place.north, townSpacingNorth);
    Point nearest;
    double best = 1e9;
    for (int c = column - 1; c <= column + 1; ++c) {
        for (int r = row - 1; r <= row + 1; ++r) {
            double radius = 0;
            const Point center = TownCenter(c, r, radius);
            if (Length(place - center) >= best) continue;
            best = Length(place - center);
            nearest = center;
        }
    }
    return nearest;
}

int Country::StreamRow(int municipalityRow) const {
    Random random(seed, Subject::stream, municipalityRow);
    return municipalityRow * municipalityCells + 1 + random.Below(2);
}

std::size_t Country::StreamCrossing(Cell node) const {
    Random random(seed, Subject::stream, node.column, node.row + int64_t{1000000});
    return static_cast<std::size_t>(3 + random.Below(3));
}

std::optional<Country::Stream> Country::StreamThrough(Cell cell) const {
    if (StreamRow(cell.row / municipalityCells) != cell.row) return std::nullopt;
    Stream stream;
    const Cell east{cell.column + 1, cell.row};
    stream.from = StreamCrossing(cell);
    stream.to = StreamCrossing(east);
    const Point start = RoadSouth(cell)[stream.from];
    const Point end = RoadSouth(east)[stream.to];

    Random random(seed, Subject::stream, cell.column, cell.row + int64_t{2000000});
    const double length = Length(end - start);
    const int bends = static_cast<int>(length / 130) + 1;
    const double wide = random.Between(0.05, 0.09) * height + 8;
    const double narrow = random.Between(5, 11);
    const double phase = random.Between(0, 2 * std::numbers::pi);
    const int steps = static_cast<int>(length / 11);
    std::vector<double> offsets;
    for (int i = 1; i < steps; ++i) {
        const double share = static_cast<double>(i) / steps;
        const double taper = std::sin(std::numbers::pi * share);
        const double large = std::sin(2 * std::numbers::pi * share * 1.5 + phase);
        const double small = std::sin(2 * std::numbers::pi * share * bends + 2 * phase);
        offsets.push_back(std::min(1.0, 2 * taper) * (wide * large * taper + narrow * small));
    }
    stream.path = Bent(start, end, offsets);
    return stream;
}

std::optional<Path> Country::PowerLineThrough(Cell cell) const {
    if (cell.column % 4 != 1) return std::nullopt;
    const auto crossing = [&](Cell node) {
        Random random(seed, Subject::powerLine, node.column, node.row);
        const Path road = RoadEast(node);
        return road[static_cast<std::size_t>(5 + random.Below(2))];
    };
    const Point start = crossing(cell);
    const Point end = crossing({cell.column, cell.row + 1});
    const int spans = std::max(2, static_cast<int>(Length(end - start) / 75));
    return Bent(start, end, std::vector<double>(static_cast<std::size_t>(spans - 1), 0.0));
}

uint64_t Country::MunicipalityKey(Cell cell) const {
    return Random(seed, Subject::district, cell.column / municipalityCells, cell.row / municipalityCells)
        .Next();
}

bool Country::IsSouthOfStream(Cell cell) const {
    return cell.row > StreamRow(cell.row / municipalityCells);
}

}  // namespace generate
