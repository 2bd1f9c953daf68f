// What is wrong with boundaries and parcels.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_map>

#include "map/box_tree.h"
#include "map/diff_keys.h"
#include "map/finding_translations.h"
#include "map/map_rules.h"
#include "map/parcels.h"

namespace vemrado::map {
namespace {

// What is said of a free end.
constexpr std::string_view nothingNear = "no other one is near";
constexpr std::string_view nearestAway = "the nearest other one is {} m away";
static_assert(IsIn(findingTranslations, nothingNear) && IsIn(findingTranslations, nearestAway));

std::string Metres(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

double DistanceToSegment(Point p, Point a, Point b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double length = dx * dx + dy * dy;
    const double along =
        length > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0) : 0;
    return std::hypot(p.x - a.x - along * dx, p.y - a.y - along * dy);
}

double Perimeter(const Area& area) {
    double sum = 0;
    for (const Ring& ring : area.rings) {
        for (size_t i = 1; i < ring.size(); ++i)
            sum += std::hypot(ring[i].x - ring[i - 1].x, ring[i].y - ring[i - 1].y);
    }
    return sum;
}

}  // namespace

void MapRules::CheckParcels() {
    constexpr ParcelLayers layers;
    RuleSet ofParcels;
    for (size_t rule = static_cast<size_t>(Rule::freeEnd); rule < ruleCount; ++rule) ofParcels.set(rule);
    if ((rules & ofParcels).none()) return;
    ParcelBuilder builder;
    std::vector<Point> stroke;
    for (size_t i = 0; i <= vertices.size(); ++i) {
        if (i == vertices.size() || vertices[i].begins) {
            if (stroke.size() > 1) builder.AddBoundary(stroke);
            stroke.clear();
        }
        if (i < vertices.size() && vertices[i].layer == layers.boundaries)
            stroke.push_back(vertices[i].point);
    }
    for (size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].layer == layers.numbers)
            builder.AddNumber(texts[i].point, texts[i].words, static_cast<uint32_t>(i));
    }
    const Parcels parcels = builder.Build();
    SortBoundary();
    CheckBoundaries(parcels);
    CheckCrossings(parcels.crossings);
    CheckNumbers(parcels);
    CheckAreas(parcels);
}

// The vertices of the boundaries by their places, those of the file's order first.
void MapRules::SortBoundary() {
    constexpr ParcelLayers layers;
    for (uint32_t i = 0; i < vertices.size(); ++i) {
        if (vertices[i].layer == layers.boundaries)
            boundary.push_back({Hash().Add(KeyOf(vertices[i].point)).Value(), i});
    }
    std::sort(boundary.begin(), boundary.end(), [](const SegmentKey& a, const SegmentKey& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.end < b.end;
    });
}

void MapRules::IndexBoundarySegments() {
    constexpr ParcelLayers layers;
    std::vector<Box> boxes;
    for (uint32_t i = 1; i < vertices.size(); ++i) {
        if (vertices[i].begins || vertices[i].layer != layers.boundaries) continue;
        Box box;
        box.Add(vertices[i - 1].point);
        box.Add(vertices[i].point);
        boxes.push_back(box);
        boundaryEnds.push_back(i);
    }
    boundaryTree = BoxTree(boxes);
}

// The last two of the file. Few maps need them, so they are indexed when the first is asked for.
MapRules::SegmentsAt MapRules::BoundaryThrough(Point point) {
    constexpr double reach = 1e-3;  // m
    if (boundaryEnds.empty()) IndexBoundarySegments();
    Box near;
    near.Add(point);
    SegmentsAt segments;
    boundaryTree.Search(near.Grown(reach), [&](uint32_t box) {
        const uint32_t end = boundaryEnds[box];
        if (DistanceToSegment(point, vertices[end - 1].point, vertices[end].point) > reach) return true;
        segments.first = std::max(std::min(end, segments.last), segments.first);
        segments.last = std::max(end, segments.last);
        return true;
    });
    return segments;
}

// Where a corner of a parcel stands in the file: its element, or the segment on which boundaries cross there.
Place MapRules::PlaceOfCorner(Point point) {
    const Vertex* const vertex = BoundaryVertexAt(point);
    return PlaceOf(vertex != nullptr ? *vertex : vertices[BoundaryThrough(point).last]);
}

// The first element at a point of the parcels; none where boundaries only cross.
const MapRules::Vertex* MapRules::BoundaryVertexAt(Point point) const {
    const uint64_t hash = Hash().Add(KeyOf(point)).Value();
    auto at = std::lower_bound(boundary.begin(), boundary.end(), hash,
                               [](const SegmentKey& key, uint64_t wanted) { return key.hash < wanted; });
    for (; at != boundary.end() && at->hash == hash; ++at) {
        if (KeyOf(vertices[at->end].point) == KeyOf(point)) return &vertices[at->end];
    }
    return nullptr;
}

void MapRules::CheckBoundaries(const Parcels& parcels) {
    for (const FreeEnd& end : parcels.freeEnds) {
        const std::string metres = Metres(end.gap);
        const std::string_view value = metres;
        const std::string gap =
            std::isfinite(end.gap) ? FilledPattern(nearestAway, {&value, 1}) : std::string(nothingNear);
        Report(Rule::freeEnd, PlaceOfCorner(end.place), end.place, gap);
    }
}

// A crossing stands at the later one of the two segments in the file.
void MapRules::CheckCrossings(const std::vector<Point>& crossings) {
    for (const Point& crossing : crossings) {
        const SegmentsAt segments = BoundaryThrough(crossing);
        if (segments.last == 0) continue;
        Report(Rule::crossingWithoutPoint, PlaceOf(vertices[segments.last]), crossing,
               std::to_string(vertices[segments.first].line));
    }
}

void MapRules::CheckNumbers(const Parcels& parcels) {
    for (const ParcelNumber& number : parcels.outside)
        Report(Rule::numberOutside, texts[number.source].place, number.place, number.text);
    constexpr ParcelLayers layers;
    const AreaFinder finder(parcels.parcels);
    std::vector<uint32_t> firstText(parcels.parcels.size(), UINT32_MAX);
    std::unordered_map<std::string_view, uint32_t> textOfNumber;
    std::vector<std::pair<uint32_t, uint32_t>> twice;
    constexpr size_t share = 50;
    constexpr size_t fewNumbers = 3;
    for (uint32_t i = 0; i < texts.size(); ++i) {
        if (texts[i].layer != layers.numbers) continue;
        const size_t parcel = finder.Find(texts[i].point);
        if (parcel == AreaFinder::nowhere) continue;
        if (firstText[parcel] != UINT32_MAX) {
            Report(Rule::parcelWithNumbers, texts[i].place, texts[i].point, texts[i].words,
                   texts[firstText[parcel]].words);
            continue;
        }
        firstText[parcel] = i;
        const auto [known, isNew] = textOfNumber.try_emplace(texts[i].words, i);
        if (!isNew) twice.emplace_back(i, known->second);
    }
    // Where many numbers are there twice the map has several areas, each with numbers of its own.
    if (twice.size() > std::max<size_t>(fewNumbers, textOfNumber.size() / share)) return;
    for (const auto& [again, first] : twice) {
        Report(Rule::numberTwice, texts[again].place, texts[again].point, texts[again].words,
               std::to_string(texts[first].place.line));
    }
}

// A parcel stands where one of its corners does.
void MapRules::CheckAreas(const Parcels& parcels) {
    constexpr double leastWidth = 0.1;  // m
    constexpr ParcelLayers layers;
    // A map of boundaries alone has no number to miss.
    const bool hasNumbers = std::any_of(texts.begin(), texts.end(),
                                        [](const PlacedText& text) { return text.layer == layers.numbers; });
    for (const Parcel& parcel : parcels.parcels) {
        const Ring& outer = parcel.area.rings.front();
        const Vertex* corner = nullptr;
        for (size_t i = 0; i < outer.size() && corner == nullptr; ++i) corner = BoundaryVertexAt(outer[i]);
        const Place place = corner ? PlaceOf(*corner) : PlaceOfCorner(outer.front());
        const Point point = corner ? corner->point : outer.front();
        const double width = 2 * parcel.area.size / std::max(Perimeter(parcel.area), 1e-9);
        if (width < leastWidth) {
            Report(Rule::sliver, place, point, Metres(parcel.area.size), Metres(width));
        } else if (parcel.texts == 0 && hasNumbers) {
            Report(Rule::parcelWithoutNumber, place, point, Metres(parcel.area.size));
        }
    }
}

}  // namespace vemrado::map
