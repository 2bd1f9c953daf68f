#include "map/parcel_sweep.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "map/box_tree.h"

namespace vemrado::map {
namespace {

// A handing over looks at all segments, so it waits until as many have come as were kept.
constexpr size_t fewestSegments = 20000;

bool Has(const std::vector<uint32_t>& ascending, uint32_t number) {
    return std::binary_search(ascending.begin(), ascending.end(), number);
}

}  // namespace

void ParcelSweep::AddBoundary(std::span<const Point> stroke, uint32_t sheet) {
    for (size_t i = 1; i < stroke.size(); ++i) segments.push_back({stroke[i - 1], stroke[i], sheet});
}

void ParcelSweep::AddNumber(Point place, std::string_view text, uint32_t sheet) {
    numbers.push_back({place, std::string(text), sheet});
}

void ParcelSweep::Advance(double x) {
    if (segments.size() - keptSegments >= std::max(fewestSegments, keptSegments)) HandOver(x);
}

void ParcelSweep::Finish() {
    HandOver(std::numeric_limits<double>::infinity());
}

void ParcelSweep::HandOver(double x) {
    std::vector<bool> needed(segments.size(), false);
    Parcels made = BuildUpTo(x, needed);
    size_t kept = 0;
    for (size_t i = 0; i < segments.size(); ++i) {
        if (needed[i] || segments[i].EastEnd() >= x) segments[kept++] = segments[i];
    }
    segments.resize(kept);
    segments.shrink_to_fit();
    keptSegments = kept;
    handedOver = x;
    give(std::move(made));
}

// A line along x tells what is final: areas that touch it are not, and what lies west of it in no such area
// never becomes part of one. Faults are told for the strip between the last such line and this one.
Parcels ParcelSweep::BuildUpTo(double x, std::vector<bool>& needed) {
    BoundaryNet net;
    Box all;
    for (uint32_t i = 0; i < segments.size(); ++i) {
        const Point ends[] = {segments[i].from, segments[i].to};
        net.Add(ends, i);
        for (const Point end : ends) all.Add(end);
    }
    const auto sweepLine = static_cast<uint32_t>(segments.size());
    if (std::isfinite(x) && !all.IsEmpty()) {
        const Point ends[] = {{x, all.minY - 1}, {x, all.maxY + 1}};
        net.Add(ends, sweepLine);
    }
    Parcels made;
    made.tooManyCrossings = !net.Build();
    const auto isInStrip = [&](Point place) { return place.x >= handedOver && place.x < x; };
    std::ranges::copy_if(net.Crossings(), std::back_inserter(made.crossings), isInStrip);
    EnclosedAreas enclosed = FindAreas(net);
    std::ranges::copy_if(enclosed.cutPieces, std::back_inserter(made.cutPieces), isInStrip);
    for (const FreeEnd& end : MeasureGaps(enclosed.freeEnds)) {
        if (isInStrip(end.place)) made.freeEnds.push_back(end);
    }
    NameSheets(made.freeEnds);
    std::vector<Parcel> open;
    for (Area& area : enclosed.areas) {
        area.neighbours.clear();
        if (Has(area.sources, sweepLine)) {
            for (const uint32_t number : area.sources) {
                if (number != sweepLine) needed[number] = true;
            }
            open.push_back({std::move(area), {}, 0});
        } else if (area.bounds.maxX >= handedOver && area.bounds.maxX < x) {
            area.sources = SheetsOf(area.sources);
            made.parcels.push_back({std::move(area), {}, 0});
        }
    }
    GiveNumbers(x, open, made);
    return made;
}

// Numbers in open areas, and those that the line has not passed, are kept.
void ParcelSweep::GiveNumbers(double x, const std::vector<Parcel>& open, Parcels& made) {
    const AreaFinder openAreas(open);
    std::vector<ParcelNumber> due;
    size_t kept = 0;
    for (ParcelNumber& number : numbers) {
        if (number.place.x >= x || openAreas.Find(number.place) != AreaFinder::nowhere) {
            std::swap(numbers[kept++], number);
        } else {
            due.push_back(std::move(number));
        }
    }
    numbers.resize(kept);
    map::GiveNumbers(due, made);
}

// A free end is the end of a segment, within what counts as one place.
void ParcelSweep::NameSheets(std::vector<FreeEnd>& ends) const {
    if (ends.empty()) return;
    constexpr double onePlace = 2e-6;  // m
    std::ranges::sort(ends, {}, [](const FreeEnd& end) { return end.place.x; });
    for (const Segment& segment : segments) {
        for (const Point place : {segment.from, segment.to}) {
            auto near = std::ranges::lower_bound(ends, place.x - onePlace, {},
                                                 [](const FreeEnd& end) { return end.place.x; });
            for (; near != ends.end() && near->place.x <= place.x + onePlace; ++near) {
                if (std::abs(near->place.y - place.y) <= onePlace) near->source = segment.sheet;
            }
        }
    }
}

std::vector<uint32_t> ParcelSweep::SheetsOf(const std::vector<uint32_t>& segmentNumbers) const {
    std::vector<uint32_t> sheets;
    for (const uint32_t number : segmentNumbers) sheets.push_back(segments[number].sheet);
    std::ranges::sort(sheets);
    sheets.erase(std::unique(sheets.begin(), sheets.end()), sheets.end());
    return sheets;
}

}  // namespace vemrado::map
