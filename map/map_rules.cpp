#include "map/map_rules.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "map/box_tree.h"
#include "map/diff_keys.h"

namespace vemrado::map {
namespace {

bool IsPlace(Point point) {
    constexpr double farthest = 1e9;  // m
    return std::abs(point.x) <= farthest && std::abs(point.y) <= farthest;
}

// The value below which a share of the others lies.
double Quantile(std::vector<double>& values, double share) {
    const auto at = static_cast<size_t>(static_cast<double>(values.size() - 1) * share);
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(at), values.end());
    return values[at];
}

}  // namespace

bool MapRules::Wanted(const RuleSet& rules) {
    RuleSet wanted;
    for (size_t rule = static_cast<size_t>(Rule::farFromRest); rule < ruleCount; ++rule) wanted.set(rule);
    return (rules & wanted).any();
}

// Strokes as "Lines and their elements" of docs/vkm-format.md has them.
void MapRules::Line(std::span<const CheckedVertex> elements, const CheckedLayer& layer) {
    size_t begin = vertices.size();
    bool hasSymbol = false;
    bool begins = true;
    for (const CheckedVertex& element : elements) {
        if (element.type == 0 || !IsPlace(element.point)) {
            hasSymbol = hasSymbol || element.symbolCode != 0;
            begins = begins || element.type != 0;
            continue;
        }
        if (begins || element.type == 'P') {
            EndStroke(begin, hasSymbol);
            begin = vertices.size();
            hasSymbol = false;
            begins = true;
        }
        vertices.push_back({element.point, static_cast<uint32_t>(element.place.line),
                            static_cast<uint32_t>(element.place.column), layer.number, begins});
        hasSymbol = hasSymbol || element.symbolCode != 0;
        begins = false;
    }
    EndStroke(begin, hasSymbol);
}

void MapRules::EndStroke(size_t begin, bool hasSymbol) {
    if (vertices.size() != begin + 1 || hasSymbol) return;
    Report(Rule::pointWithoutSymbol, PlaceOf(vertices.back()), vertices.back().point);
}

void MapRules::Text(const CheckedText& text, const CheckedLayer& layer) {
    constexpr double scaleOfSizes = 1000;
    if (!IsPlace(text.point)) return;
    texts.push_back({text.point, decoder.Decode(text.text), text.valueH * reading->Scale() / scaleOfSizes,
                     text.place, layer.number});
}

// What the map of a file that ends too early lacks is no fault of its own.
void MapRules::Finish(FindingSink& sink) {
    if (!reading->Complete()) {
        for (const Rule rule : {Rule::freeEnd, Rule::parcelWithoutNumber})
            rules.reset(static_cast<size_t>(rule));
    }
    if (Wants(Rule::farFromRest)) FindFarPoints();
    if (Wants(Rule::equalPoints)) FindEqualPoints();
    if (Wants(Rule::doubledSegment)) FindDoubledSegments();
    if (Wants(Rule::textsOnEachOther)) FindTextsOnEachOther();
    CheckParcels();
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return a.place.line != b.place.line ? a.place.line < b.place.line : a.place.column < b.place.column;
    });
    for (const Finding& finding : findings) {
        if (Wants(finding.rule)) sink.Take(finding);
    }
}

// Far is many times the width of the middle half of all points, and ten kilometres at least.
void MapRules::FindFarPoints() {
    constexpr double leastDistance = 10000;
    constexpr double widths = 20;
    constexpr size_t fewPoints = 8;
    if (vertices.size() < fewPoints) return;
    const auto checkAxis = [&](double Point::*axis, std::vector<bool>& far) {
        std::vector<double> values;
        for (const Vertex& vertex : vertices) values.push_back(vertex.point.*axis);
        const double middle = Quantile(values, 0.5);
        const double width = Quantile(values, 0.75) - Quantile(values, 0.25);
        const double limit = std::max(leastDistance, widths * width);
        for (size_t i = 0; i < vertices.size(); ++i)
            if (std::abs(vertices[i].point.*axis - middle) > limit) far[i] = true;
    };
    std::vector<bool> far(vertices.size());
    checkAxis(&Point::x, far);
    checkAxis(&Point::y, far);
    for (size_t i = 0; i < vertices.size(); ++i)
        if (far[i]) Report(Rule::farFromRest, PlaceOf(vertices[i]), vertices[i].point);
}

void MapRules::FindEqualPoints() {
    for (size_t i = 1; i < vertices.size(); ++i) {
        if (!vertices[i].begins && KeyOf(vertices[i].point) == KeyOf(vertices[i - 1].point))
            Report(Rule::equalPoints, PlaceOf(vertices[i]), vertices[i].point);
    }
}

bool MapRules::SameSegment(uint32_t one, uint32_t other) const {
    const PlaceKey a = KeyOf(vertices[one - 1].point), b = KeyOf(vertices[one].point);
    const PlaceKey c = KeyOf(vertices[other - 1].point), d = KeyOf(vertices[other].point);
    return vertices[one].layer == vertices[other].layer && ((a == c && b == d) || (a == d && b == c));
}

void MapRules::FindDoubledSegments() {
    std::vector<SegmentKey> keys;
    for (uint32_t i = 1; i < vertices.size(); ++i) {
        if (vertices[i].begins) continue;
        const PlaceKey a = KeyOf(vertices[i - 1].point), b = KeyOf(vertices[i].point);
        if (a == b) continue;
        const uint64_t hash = Hash()
                                  .Add(std::min(a, b))
                                  .Add(std::max(a, b))
                                  .Add(static_cast<uint64_t>(vertices[i].layer))
                                  .Value();
        keys.push_back({hash, i});
    }
    std::sort(keys.begin(), keys.end(), [](const SegmentKey& a, const SegmentKey& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.end < b.end;
    });
    std::vector<std::pair<uint32_t, uint32_t>> doubled;  // the later segment and the earlier one
    for (size_t i = 1; i < keys.size(); ++i) {
        if (keys[i].hash == keys[i - 1].hash && SameSegment(keys[i - 1].end, keys[i].end))
            doubled.emplace_back(keys[i].end, keys[i - 1].end);
    }
    std::sort(doubled.begin(), doubled.end());
    for (size_t i = 0; i < doubled.size(); ++i) {
        const auto [again, first] = doubled[i];
        const bool hasNeighbour = (i > 0 && doubled[i - 1].first + 1 == again) ||
                                  (i + 1 < doubled.size() && doubled[i + 1].first == again + 1);
        if (!hasNeighbour && IsOutline(again) && IsOutline(first)) continue;  // a wall of two houses
        Report(Rule::doubledSegment, PlaceOf(vertices[again]), vertices[again].point,
               std::to_string(vertices[first].line));
    }
}

// Whether a segment belongs to a stroke that ends where it begins. Longer ones than any house's are none.
bool MapRules::IsOutline(uint32_t end) const {
    constexpr uint32_t longest = 1000;
    uint32_t first = end - 1;
    uint32_t last = end;
    while (!vertices[first].begins && end - first < longest) --first;
    while (last + 1 < vertices.size() && !vertices[last + 1].begins && last - end < longest) ++last;
    return vertices[first].begins && last - first > 2 &&
           KeyOf(vertices[first].point) == KeyOf(vertices[last].point);
}

// Texts whose insertion points are closer than a part of their height cover each other, whatever they say.
void MapRules::FindTextsOnEachOther() {
    constexpr double share = 0.25;
    std::vector<Box> boxes;
    for (const PlacedText& text : texts) {
        Box box;
        box.Add(text.point);
        const double reach = std::isfinite(text.height) ? share * std::clamp(text.height, 0.0, 1e3) : 0;
        boxes.push_back(box.Grown(reach / 2));
    }
    const BoxTree tree(boxes);
    for (uint32_t i = 0; i < texts.size(); ++i) {
        uint32_t under = i;
        if (texts[i].words.empty()) continue;
        tree.Search(boxes[i], [&](uint32_t other) {
            const bool isUnder =
                other < i && texts[other].layer == texts[i].layer && !texts[other].words.empty();
            if (isUnder) under = other;
            return under == i;
        });
        if (under == i) continue;
        Report(Rule::textsOnEachOther, texts[i].place, texts[i].point, texts[under].words,
               std::to_string(texts[under].place.line));
    }
}

void MapRules::Report(Rule rule, Place place, Point point, std::string first, std::string second) {
    findings.push_back({rule, place, {}, {std::move(first), std::move(second)}, point});
}

}  // namespace vemrado::map
