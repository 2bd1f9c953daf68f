// The rules that need the whole map: its elements are kept with their places, and looked at when the file has
// been read. n log n time; 32 bytes a point and 72 a text, and what the parcels take.

#pragma once

#include <string>
#include <vector>

#include "map/box_tree.h"
#include "map/checked_reading.h"
#include "map/findings.h"

namespace vemrado::map {

class MapRules : public ElementSink {
  public:
    MapRules(const RuleSet& wanted, client::Encoding encoding) : rules(wanted), decoder(encoding) {}

    // Whose elements these are; for the map scale that texts have.
    void Attach(const CheckedReading& source) { reading = &source; }

    // True when a rule of these is wanted.
    static bool Wanted(const RuleSet& rules);

    void Line(std::span<const CheckedVertex> elements, const CheckedLayer& layer) override;
    void Text(const CheckedText& text, const CheckedLayer& layer) override;

    // Gives the findings in the order of the file.
    void Finish(FindingSink& sink);

  private:
    struct Vertex {
        Point point;
        uint32_t line = 0;
        uint32_t column = 0;
        int32_t layer = 0;
        bool begins = false;  // a stroke
    };
    struct PlacedText {
        Point point;
        std::string words;  // UTF-8
        double height = 0;  // on the ground
        Place place;
        int32_t layer = 0;
    };
    struct SegmentKey {
        uint64_t hash;
        uint32_t end;  // vertex
    };

    bool Wants(Rule rule) const { return rules[static_cast<size_t>(rule)]; }
    void EndStroke(size_t begin, bool hasSymbol);
    void FindFarPoints();
    void FindEqualPoints();
    void FindDoubledSegments();
    bool SameSegment(uint32_t one, uint32_t other) const;
    bool IsOutline(uint32_t end) const;
    void FindTextsOnEachOther();

    // In parcel_rules.cpp.
    void CheckParcels();
    void CheckBoundaries(const struct Parcels& parcels);
    void CheckCrossings(const std::vector<Point>& crossings);
    void CheckNumbers(const struct Parcels& parcels);
    void CheckAreas(const struct Parcels& parcels);
    // Boundary segments through a place, by the vertices where they end; 0: none.
    struct SegmentsAt {
        uint32_t first = 0;
        uint32_t last = 0;
    };
    SegmentsAt BoundaryThrough(Point point);
    void IndexBoundarySegments();
    Place PlaceOfCorner(Point point);
    const Vertex* BoundaryVertexAt(Point point) const;
    void SortBoundary();

    static Place PlaceOf(const Vertex& vertex) { return {vertex.line, vertex.column}; }
    void Report(Rule rule, Place place, Point point, std::string first = {}, std::string second = {});

    RuleSet rules;
    client::TextDecoder decoder;
    const CheckedReading* reading = nullptr;
    std::vector<Vertex> vertices;
    std::vector<PlacedText> texts;
    std::vector<SegmentKey> boundary;    // vertices of the boundaries by their places
    std::vector<uint32_t> boundaryEnds;  // vertices at the ends of boundary segments
    BoxTree boundaryTree;                // of those segments
    std::vector<Finding> findings;
};

}  // namespace vemrado::map
