#include "sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include "clearance.h"
#include "furnishing.h"
#include "random.h"

namespace generate {

namespace {

constexpr int firstHouseStep = 130;

// Position of a cell in its municipality, for house numbers that do not repeat in it.
int PlaceInMunicipality(Cell cell) {
    constexpr int size = Country::municipalityCells;
    return cell.column % size + size * (cell.row % size);
}

// Position of a cell among all cells, municipality by municipality.
int64_t PlaceInCountry(Cell cell) {
    constexpr int size = Country::municipalityCells;
    return SheetOfCell({cell.column / size, cell.row / size}) * size * size + PlaceInMunicipality(cell);
}

class SheetPainter {
  public:
    SheetPainter(const Country& land, const Names& allNames, Cell place, int scale, Grid grid)
        : country(land),
          names(allNames),
          cell(place),
          paper(scale / 1000.0),
          drawing(grid, paper),
          net(grid),
          streetRandom(country.Seed(), Subject::streets, cell.column, cell.row),
          random(country.Seed(), Subject::parcels, cell.column, cell.row) {}

    Drawing Paint() {
        const StreetPlan plan = PlanStreets(country, cell, streetRandom);
        PaintParcels(plan);
        PaintBoundaries();
        PaintBoundaryPoints();
        for (const Block& block : plan.blocks) {
            if (block.town < 1.0) PaintKerb(block);
        }
        PaintStreets(plan);
        if (!plan.stream.empty()) PaintStream(plan);
        PaintDistrictBoundaries(plan);
        PaintPowerLine();
        PaintDistrictNames(plan);
        return std::move(drawing);
    }

  private:
    void PaintParcels(const StreetPlan& plan) {
        const int place = PlaceInMunicipality(cell);
        std::vector<Parcel> parcels;
        ParcelPlanner planner(country, net, random, PlaceInCountry(cell));
        for (const Block& block : plan.blocks) planner.Divide(block, parcels);
        Furnisher furnisher(names, drawing, random, paper, 1 + place * firstHouseStep);
        for (Parcel& parcel : parcels) furnisher.Furnish(net, parcel);
    }

    void PaintBoundaries() {
        std::vector<GridPoint> points;
        for (std::size_t i = 0; i < net.LineCount(); ++i) {
            net.Line(i, points);
            const bool uncertain = !net.IsOutline(i) && random.Chance(0.02);
            const int32_t code = uncertain ? codeParcelUncertain : codeParcel;
            const auto same = [](GridPoint a, GridPoint b) { return a.east == b.east && a.north == b.north; };
            points.erase(std::unique(points.begin(), points.end(), same), points.end());
            if (points.size() < 2) continue;  // too short for the decimals
            drawing.StartLine(layerBoundaries, points[0], code);
            for (std::size_t k = 1; k < points.size(); ++k) drawing.Element(layerBoundaries, points[k], code);
        }
    }

    // A third of the corners carry a survey mark.
    void PaintBoundaryPoints() {
        for (std::size_t node = 0; node < net.Nodes().size(); ++node) {
            const double number = random.Unit();
            if (net.Degree(node) < 3 || number > 0.35) continue;
            const int32_t symbol = number < 0.06   ? symbolBoundaryStone
                                   : number < 0.14 ? symbolBoundaryMark
                                                   : symbolBoundaryPoint;
            drawing.AddSymbol(layerPoints, drawing.GridOf().ToMetres(net.Nodes()[node]), symbol);
        }
    }

    void PaintKerb(const Block& block) {
        bool first = true;
        for (const KerbPoint& point : KerbOf(block, 1.7)) {
            const GridPoint at = drawing.GridOf().Snap(point.at);
            if (first) {
                drawing.StartLine(layerNames, at, codeRoadEdge);
            } else if (point.startsStroke) {
                drawing.Stroke(layerNames, at, codeRoadEdge);
            } else {
                drawing.Element(layerNames, at, codeRoadEdge, point.radius > 0 ? 'R' : 'L', point.radius);
            }
            first = false;
        }
    }

    void PaintStreets(const StreetPlan& plan) {
        int controlPoint = 501 + 20 * PlaceInMunicipality(cell);
        for (const Street& street : plan.streets) {
            PaintStreetName(street);
            const bool mainStreet =
                street.main && country.TownDistance(street.path[street.path.size() / 2]) < 1.6;
            if (mainStreet) PaintTrees(street);
            if (!street.main && random.Chance(0.9)) continue;
            const Point at = street.path[street.path.size() / 3] + Point{0.8, -0.6};
            const int32_t symbol = street.main ? symbolTraversePoint : symbolControlPoint;
            drawing.AddSymbol(layerPoints, at, symbol);
            drawing.AddText(layerHouseNumbers, at + Point{3.2, 1.2} * paper, std::to_string(controlPoint++),
                            0, 0);
        }
    }

    void PaintStreetName(const Street& street) {
        const double length = PathLength(street.path);
        const std::size_t middle = street.path.size() / 2;
        const bool outside = country.TownDistance(street.path[middle]) > 1.5;
        const std::string& name =
            street.main ? NameFor(names.mainRoads, street.nameKey) : NameFor(names.streets, street.nameKey);
        const double height = street.main ? 3.4 : 2.3;
        const double textLength = static_cast<double>(name.size()) * 0.62 * height * paper;
        if (textLength > length * 0.8 || (outside && !street.main)) return;
        const Point direction = street.path[middle] - street.path[middle - 1];
        drawing.AddText(layerNames, Middle(street.path[middle], street.path[middle - 1]), name,
                        street.main ? textRoad : textStreet, ReadableGons(direction));
    }

    // Trees beside the kerb of a main street.
    void PaintTrees(const Street& street) {
        for (std::size_t i = 1; i + 1 < street.path.size(); ++i) {
            const Point direction = Unit(street.path[i + 1] - street.path[i - 1]);
            const Point at = street.path[i] + Left(direction) * (street.halfWidth - 1.0);
            if (i % 2 == 0) {
                drawing.AddSymbol(layerBuildingMarks, at, symbolBroadleafTree, 0, random.Between(0.8, 1.1));
            } else if (i % 4 == 1) {
                drawing.AddSymbol(layerBuildingMarks, at, symbolLamp);
            }
        }
    }

    void PaintStream(const StreetPlan& plan) {
        const Path& path = plan.stream;
        const double west = country.HalfWidthSouth(cell);
        const double east = country.HalfWidthSouth({cell.column + 1, cell.row});
        for (const double side : {-1.0, 1.0}) {
            Path bank;
            for (std::size_t i = 0; i < path.size(); ++i) {
                const Point direction =
                    Unit(path[std::min(i + 1, path.size() - 1)] - path[i > 0 ? i - 1 : 0]);
                if (Length(path[i] - path.front()) < west || Length(path[i] - path.back()) < east) continue;
                const double width = plan.streamHalfWidth - 1.2 - random.Between(0, 0.5);
                bank.push_back(path[i] + Left(direction) * (width * side));
            }
            drawing.AddPath(layerWater, bank, codeWaterEdge, 'K');
        }
        CloseStream(plan, path.front());
        CloseStream(plan, path.back());
        const std::size_t third = path.size() / 3;
        for (const std::size_t i : {third / 2, third + third / 2, 2 * third + third / 2}) {
            drawing.AddSymbol(layerLandUse, path[i], symbolFlow, FlowGons(path[i + 1] - path[i]));
        }
        const Point direction = path[third + 3] - path[third - 3];
        const Point beside = path[third] + Left(Unit(direction)) * (5.5 + 2.5 * paper);
        drawing.AddText(layerNames, beside, NameFor(names.streams, country.MunicipalityKey(cell)), textWater,
                        ReadableGons(direction));
    }

    // The stream parts a sheet between two districts.
    bool IsSouthern(const StreetPlan& plan, Point place) const {
        for (std::size_t i = 1; i < plan.stream.size(); ++i) {
            const Point from = plan.stream[i - 1];
            const Point to = plan.stream[i];
            if (place.east >= from.east && place.east < to.east) return Cross(to - from, place - from) < 0;
        }
        return country.IsSouthOfStream(cell);
    }

    // A line across the stream at one of its ends closes its parcel against the main road. The stream has no
    // number, so a line joins two blocks, and those of both ends never the same two: it encloses nothing.
    void CloseStream(const StreetPlan& plan, Point end) {
        std::array<Point, 2> corners;
        std::array<double, 2> nearest{30, 30};
        std::array<const Block*, 2> blocks{};
        for (const Block& block : plan.blocks) {
            const std::size_t count = block.outline.size();
            for (std::size_t i = 0; i < count; ++i) {
                const bool before = block.sides[(i + count - 1) % count] == Side::stream;
                const bool after = block.sides[i] == Side::stream;
                if (before == after) continue;
                // The stream lies on the right of northern blocks' edges that run with it, eastwards.
                const std::size_t side = (end.east == plan.stream.front().east) == before ? 0 : 1;
                const double distance = Length(block.outline[i] - end);
                if (distance >= nearest[side]) continue;
                nearest[side] = distance;
                corners[side] = block.outline[i];
                blocks[side] = &block;
            }
        }
        std::sort(blocks.begin(), blocks.end());
        if (!blocks[0] || blocks[0] == blocks[1] || blocks == closedBlocks) return;
        const Grid& grid = drawing.GridOf();
        if (!net.IsClear(grid.Snap(corners[0]), grid.Snap(corners[1])) ||
            !IsClearOf({corners[0], corners[1]}, plan.land))
            return;
        drawing.AddPath(layerBoundaries, {corners[0], corners[1]}, codeParcel);
        closedBlocks = blocks;
    }

    static double FlowGons(Point direction) {
        return std::atan2(direction.north, direction.east) * (200 / std::numbers::pi);
    }

    void PaintDistrictBoundaries(const StreetPlan& plan) {
        if (!plan.stream.empty()) drawing.AddPath(layerNetworks, plan.stream, codeDistrict);
        if (Country::IsMunicipalityLine(cell.row)) {
            drawing.AddPath(layerNetworks, country.RoadEast(cell), codeMunicipality);
            drawing.AddSymbol(layerPoints, country.RoadEast(cell)[0], symbolDistrictStone);
        }
        if (Country::IsMunicipalityLine(cell.column)) {
            drawing.AddPath(layerNetworks, country.RoadSouth(cell), codeMunicipality);
            drawing.AddSymbol(layerPoints, country.RoadSouth(cell)[4], symbolDistrictStone);
        }
    }

    // Poles stand at the points of the power line, turned with it.
    void PaintPowerLine() {
        const auto line = country.PowerLineThrough(cell);
        if (!line) return;
        const double gons = FlowGons(line->back() - line->front());
        drawing.StartLine(layerNetworks, drawing.GridOf().Snap(line->front()), codePowerLine);
        for (std::size_t i = 1; i < line->size(); ++i) {
            drawing.Element(layerNetworks, drawing.GridOf().Snap((*line)[i]), codePowerLine);
            drawing.MarkLast(layerNetworks, i % 4 == 0 ? symbolMast : symbolPole, gons);
        }
    }

    // The largest block outside the town bears a field's name; the town's name stands in the next.
    void PaintDistrictNames(const StreetPlan& plan) {
        std::vector<const Block*> outside;
        for (const Block& block : plan.blocks) {
            if (block.town > 1.0) outside.push_back(&block);
        }
        std::sort(outside.begin(), outside.end(),
                  [](const Block* a, const Block* b) { return Area(a->outline) > Area(b->outline); });
        for (std::size_t i = 0; i < outside.size() && i < 3; ++i) {
            const Frame frame = FrameOf(outside[i]->outline);
            const Point at = frame.center + frame.across * (frame.width * 0.22);
            const double gons = ReadableGons(frame.along);
            if (i == 0 && PlaceInMunicipality(cell) % 2 == 0) {
                drawing.AddText(layerNames, at, DistrictName(country, names, cell, IsSouthern(plan, at)),
                                textDistrict, 0);
            } else {
                drawing.AddText(layerNames, at, NameFor(names.fields, streetRandom.Next()),
                                i == 0 ? textLocalName : textSmallName, gons);
            }
        }
        if (PlaceInMunicipality(cell) == Country::municipalityCells + 2) {
            const Point center{(cell.column + 0.5) * country.SheetWidth(),
                               -(cell.row + 0.35) * country.SheetHeight()};
            drawing.AddText(layerNames, center, NameFor(names.towns, country.MunicipalityKey(cell)),
                            textMunicipality, 0);
        }
    }

    const Country& country;
    const Names& names;
    const Cell cell;
    const double paper;
    Drawing drawing;
    BoundaryNet net;
    std::array<const Block*, 2> closedBlocks{};  // that a line across the stream joins
    Random streetRandom;
    Random random;
};

}  // namespace

std::string DistrictName(const Country& country, const Names& names, Cell cell, bool southern) {
    const std::string& part = southern ? names.lower : names.upper;
    return part + NameFor(names.towns, country.MunicipalityKey(cell));
}

Drawing DrawSheet(const Country& country, const Names& names, Cell cell, int scale, Grid grid) {
    return SheetPainter(country, names, cell, scale, grid).Paint();
}

}  // namespace generate
