#include "buildings.h"

#include <algorithm>
#include <cmath>

namespace generate {

namespace {

// The stretch along the street that is free at all depths from near to far, from the middle of the front.
struct Stretch {
    double low = 0;
    double high = 0;
    double Size() const { return high - low; }
};

Stretch FreeStretch(const Site& site, double near, double far) {
    Stretch free{-1e9, 1e9};
    for (const double depth : {near, (near + far) / 2, far}) {
        const Point at = site.front.middle + site.front.inwards * depth;
        Chord chord;
        if (!Contains(site.ring, at) || !FindChord(site.ring, at, site.front.along, chord)) return {};
        free.low = std::max(free.low, chord.behind.distance);
        free.high = std::min(free.high, chord.ahead.distance);
    }
    return free;
}

// A ring given along and away from the street.
Ring OnSite(const Site& site, std::initializer_list<Point> local) {
    Ring ring;
    for (const Point& point : local) {
        ring.push_back(site.front.middle + site.front.along * point.east + site.front.inwards * point.north);
    }
    return ring;
}

bool Fits(const Site& site, const Ring& ring, double clearance) {
    return std::all_of(ring.begin(), ring.end(), [&](Point point) {
        return Contains(site.ring, point) && DistanceToOutline(site.ring, point) >= clearance;
    });
}

}  // namespace

void Builder::Draw(const Ring& ring, int32_t code) {
    drawing.AddRing(layerBuildings, ring, code);
    occupied.push_back(ring);
}

BuildingPlan Builder::Terrace(const Site& site) {
    const double deep = random.Between(9.5, 13);
    const double wingChance = random.Unit();
    const Point through = site.front.middle + site.front.inwards * deep;
    Chord chord;
    if (site.front.depth < deep + 3 || !Contains(site.ring, through) ||
        !FindChord(site.ring, through, site.front.along, chord)) {
        return {};
    }
    const Ring house = RightOf(site.ring, chord);
    if (Area(house) < 30) return {};
    Draw(house, codeBuilding);
    if (wingChance < 0.6) {
        const double wing = random.Between(4, 5.5);
        const double length = std::min(random.Between(6, 11), site.front.depth - deep - 3);
        const Stretch free = FreeStretch(site, deep + 0.3, deep + length);
        if (length > 3 && free.Size() > wing + 4) {
            const double low = wingChance < 0.3 ? free.low + 0.4 : free.high - 0.4 - wing;
            Draw(OnSite(site,
                        {{low, deep}, {low + wing, deep}, {low + wing, deep + length}, {low, deep + length}}),
                 codeOutbuilding);
        }
    }
    return {true, Centroid(house), site.front.middle, deep};
}

BuildingPlan Builder::House(const Site& site) {
    const double setback = random.Between(3.2, 6);
    const double deep = random.Between(8.5, 11.5);
    double wide = random.Between(8.5, 13);
    const int shape = random.Below(5);
    const double place = random.Between(0.35, 0.65);
    const double wing = random.Between(3, 4.5);
    if (site.front.depth < setback + deep + 3) return {};
    const Stretch free = FreeStretch(site, setback, setback + deep);
    wide = std::min(wide, free.Size() - 3.5);
    if (wide < 6.5) return {};
    const double spare = free.Size() - wide - 3;
    const double x0 = free.low + 1.5 + spare * place;
    const double x1 = x0 + wide;
    const double y0 = setback;
    const double y1 = setback + deep;
    Ring ring;
    switch (shape) {
        case 0:  // a wing towards the garden
            ring = OnSite(site, {{x0, y0},
                                 {x1, y0},
                                 {x1, y1},
                                 {x0 + wide * 0.55, y1},
                                 {x0 + wide * 0.55, y1 + wing},
                                 {x0, y1 + wing}});
            break;
        case 1:  // an entrance set back
            ring = OnSite(site, {{x0, y0},
                                 {x0 + wide * 0.6, y0},
                                 {x0 + wide * 0.6, y0 + 2.2},
                                 {x1, y0 + 2.2},
                                 {x1, y1},
                                 {x0, y1}});
            break;
        case 2:  // a bay in the back wall
            ring = OnSite(site, {{x0, y0},
                                 {x1, y0},
                                 {x1, y1},
                                 {x0 + wide * 0.7, y1},
                                 {x0 + wide * 0.6, y1 + 1.6},
                                 {x0 + wide * 0.4, y1 + 1.6},
                                 {x0 + wide * 0.3, y1},
                                 {x0, y1}});
            break;
        default:
            ring = OnSite(site, {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
    }
    if (!Fits(site, ring, 0.8)) return {};
    Draw(ring, codeBuilding);
    const double back = shape == 0 ? y1 + wing : shape == 2 ? y1 + 1.6 : y1;
    const Point wall = OnSite(site, {{x0 + wide * 0.3, y0}})[0];
    if (random.Chance(0.35)) Steps(site, wall);
    if (random.Chance(0.45)) Shed(site, back + 3);
    const Point center = OnSite(site, {{x0 + wide * 0.45, (y0 + y1) / 2}})[0];
    return {true, center, wall, back};
}

// Three treads before an entrance: a line of several strokes.
void Builder::Steps(const Site& site, Point wall) {
    for (int tread = 0; tread < 3; ++tread) {
        const Point from = wall - site.front.inwards * (0.35 * (tread + 1)) - site.front.along * 0.9;
        const GridPoint start = drawing.GridOf().Snap(from);
        if (tread == 0) {
            drawing.StartLine(layerBuildings, start, codeBuildingDetail);
        } else {
            drawing.Stroke(layerBuildings, start, codeBuildingDetail);
        }
        drawing.Element(layerBuildings, drawing.GridOf().Snap(from + site.front.along * 1.8),
                        codeBuildingDetail);
    }
}

bool Builder::Shed(const Site& site, double from) {
    const double wide = random.Between(3.5, 6);
    const double deep = random.Between(4, 7);
    const bool atLow = random.Chance(0.5);
    const double near = std::max(from, site.front.depth * random.Between(0.5, 0.75));
    const Stretch free = FreeStretch(site, near, near + deep);
    if (free.Size() < wide + 2) return false;
    const double x = atLow ? free.low + 0.6 : free.high - 0.6 - wide;
    const Ring ring = OnSite(site, {{x, near}, {x + wide, near}, {x + wide, near + deep}, {x, near + deep}});
    if (!Fits(site, ring, 0.3)) return false;
    Draw(ring, codeOutbuilding);
    return true;
}

BuildingPlan Builder::Hut(const Site& site) {
    const double wide = random.Between(3, 4.5);
    const double deep = random.Between(3.5, 5);
    const double near = random.Between(4, 9);
    const Stretch free = FreeStretch(site, near, near + deep);
    if (free.Size() < wide + 2) return {};
    const double x = free.low + 1 + (free.Size() - wide - 2) * random.Unit();
    const Ring ring = OnSite(site, {{x, near}, {x + wide, near}, {x + wide, near + deep}, {x, near + deep}});
    if (!Fits(site, ring, 0.6)) return {};
    Draw(ring, codeOutbuilding);
    return {true, Centroid(ring), ring[0], near + deep};
}

BuildingPlan Builder::Halls(const Site& site) {
    BuildingPlan plan;
    double near = random.Between(6, 10);
    const int halls = 1 + random.Below(3);
    for (int hall = 0; hall < halls; ++hall) {
        const double deep = random.Between(14, 26);
        if (near + deep + 5 > site.front.depth) break;
        const Stretch free = FreeStretch(site, near, near + deep);
        const double wide = std::min(free.Size() - 12, random.Between(28, 60));
        if (wide < 12) break;
        const double x = free.low + 6 + (free.Size() - 12 - wide) * random.Unit();
        const Ring ring =
            OnSite(site, {{x, near}, {x + wide, near}, {x + wide, near + deep}, {x, near + deep}});
        if (Fits(site, ring, 1.5)) {
            Draw(ring, codeBuilding);
            if (!plan.built) plan = {true, Centroid(ring), ring[0], near + deep};
            plan.back = near + deep;
        }
        near += deep + random.Between(8, 14);
    }
    return plan;
}

BuildingPlan Builder::Church(Point center) {
    const Point along = Rotated({1, 0}, random.Between(-0.12, 0.12));
    const Point left = Left(along);
    const auto at = [&](double x, double y) { return center + along * x + left * y; };
    Ring nave{at(-12, -5.5), at(9, -5.5)};
    constexpr double apse[][2] = {{11.5, -4.6}, {13.6, -2.6}, {14.4, 0}, {13.6, 2.6}, {11.5, 4.6}};
    for (const auto& point : apse) nave.push_back(at(point[0], point[1]));
    nave.insert(nave.end(),
                {at(9, 5.5), at(-12, 5.5), at(-12, 3.2), at(-18, 3.2), at(-18, -3.2), at(-12, -3.2)});
    Draw(nave, codeBuilding);
    drawing.AddPath(layerBuildings, {at(-12, -3.2), at(-12, 3.2)}, codeBuildingDetail);
    // Buttresses: strokes of one line.
    bool first = true;
    for (const double x : {-8.0, -4.0, 0.0, 4.0, 8.0}) {
        for (const double side : {-1.0, 1.0}) {
            const GridPoint from = drawing.GridOf().Snap(at(x, side * 5.5));
            if (first) {
                drawing.StartLine(layerBuildings, from, codeBuildingDetail);
            } else {
                drawing.Stroke(layerBuildings, from, codeBuildingDetail);
            }
            drawing.Element(layerBuildings, drawing.GridOf().Snap(at(x, side * 6.7)), codeBuildingDetail);
            first = false;
        }
    }
    return {true, center, at(-18, 0), 0};
}

}  // namespace generate
