#include "queries.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "draw/clip.h"
#include "fold.h"
#include "json.h"
#include "said.h"

namespace vemrado::web {
namespace {

constexpr size_t mostPicked = 12;
constexpr uint32_t mostOutlinePoints = 20000;

const char* StateName(SheetState state) {
    switch (state) {
        case SheetState::reading:
            return "reading";
        case SheetState::complete:
            return "complete";
        case SheetState::incomplete:
            return "incomplete";
        case SheetState::stopped:
            return "stopped";
        case SheetState::failed:
            break;
    }
    return "failed";
}

void PutPoint(Json& json, draw::Point point) {
    json.Number(point.x).Number(point.y);
}

void PutSheet(Json& json, const Sheet& sheet) {
    const draw::Scene& scene = sheet.Scene();
    json.Begin('{').Member("name", sheet.Name()).Member("state", StateName(sheet.State()));
    json.Member("failure", Said(sheet.Failure())).Member("failureLine", sheet.FailureLine());
    json.Member("lines", sheet.Lines()).Member("texts", sheet.Texts());
    json.Member("scale", scene.mapScale).Member("scaleUsable", scene.mapScaleUsable);
    json.Member("skipped", scene.skipped.Count()).Member("length", sheet.Length());
    json.Key("messages").Begin('[');
    for (const std::string& box : sheet.Boxes()) json.String(box);
    json.End(']').End('}');
}

struct LayerSummary {
    std::string name;
    uint64_t strokes = 0;
    uint64_t symbols = 0;
    uint64_t texts = 0;
    std::map<uint32_t, uint64_t> colours;
};

void AddLayer(const draw::Scene& scene, const draw::Layer& layer, LayerSummary& sum) {
    if (sum.name.empty()) sum.name = layer.name;
    sum.strokes += layer.strokes.size();
    sum.symbols += layer.symbols.size();
    sum.texts += layer.texts.size();
    for (const draw::Stroke& stroke : layer.strokes) ++sum.colours[scene.lineStyles[stroke.style].pen.colour];
}

void PutBox(Json& json, const draw::Box& box) {
    json.Begin('[');
    if (!box.IsEmpty()) json.Number(box.minX).Number(box.minY).Number(box.maxX).Number(box.maxY);
    json.End(']');
}

}  // namespace

std::string Summary(const Viewer& viewer) {
    Json json;
    json.Begin('{').Key("sheets").Begin('[');
    std::map<int, LayerSummary> layers;
    for (const auto& sheet : viewer.Sheets()) {
        PutSheet(json, *sheet);
        for (const auto& [number, layer] : sheet->Scene().layers)
            AddLayer(sheet->Scene(), layer, layers[number]);
    }
    json.End(']').Key("layers").Begin('[');
    for (const auto& [number, sum] : layers) {
        const auto most = std::max_element(sum.colours.begin(), sum.colours.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        json.Begin('{').Member("number", number).Member("name", sum.name).Member("lines", sum.strokes);
        json.Member("symbols", sum.symbols).Member("texts", sum.texts).Member("shown", viewer.Shows(number));
        json.Member("colour", most == sum.colours.end() ? 0 : most->first).End('}');
    }
    json.End(']').Key("extent");
    PutBox(json, viewer.Extent());
    return json.End('}').Text();
}

// --- Legend ---

namespace {

struct LegendEntry {
    const Sheet* sheet = nullptr;
    const draw::Pen* pen = nullptr;
    const draw::SymbolShape* shape = nullptr;
    bool known = false;
};

using LegendEntries = std::map<int, LegendEntry>;  // by code

bool Meets(const draw::Layer& layer, const draw::Stroke& stroke, const draw::Box& box) {
    bool meets = false;
    draw::ClipStroke({layer.points.data() + stroke.first, stroke.count}, box,
                     [&](std::span<const draw::Point>, double) { meets = true; });
    return meets;
}

void CollectLegend(const Sheet& sheet, const draw::Layer& layer, const LayerIndex& index,
                   const draw::Box& box, LegendEntries& lines, LegendEntries& symbols) {
    const draw::Scene& scene = sheet.Scene();
    index.strokes.Search(box, [&](uint32_t i) {
        const draw::Stroke& stroke = layer.strokes[i];
        const draw::LineStyle& style = scene.lineStyles[stroke.style];
        LegendEntry& entry = lines[style.known ? style.code : 0];
        if (entry.sheet == nullptr && Meets(layer, stroke, box)) {
            entry = {&sheet, &style.pen, nullptr, style.known};
        }
        return true;
    });
    index.symbols.Search(box, [&](uint32_t i) {
        const draw::SymbolStyle& style = scene.symbolStyles[layer.symbols[i].style];
        symbols.try_emplace(style.code, LegendEntry{&sheet, nullptr, &style.shape, true});
        return true;
    });
}

void PutPen(Json& json, const draw::Pen& pen) {
    json.Member("colour", pen.colour).Member("width", pen.width).Member("invisible", pen.invisible);
    json.Key("dashes").Begin('[');
    for (const double dash : pen.dashes) json.Number(dash);
    json.End(']');
}

void PutShape(Json& json, const draw::SymbolShape& shape) {
    json.Key("bounds");
    PutBox(json, shape.bounds);
    json.Key("strokes").Begin('[');
    for (const auto& stroke : shape.strokes) {
        json.Begin('[');
        for (const draw::Point point : stroke) PutPoint(json, point);
        json.End(']');
    }
    json.End(']');
}

}  // namespace

std::string LegendOf(const Viewer& viewer, const draw::Box& box) {
    LegendEntries lines;
    LegendEntries symbols;
    for (const auto& sheet : viewer.Sheets()) {
        for (const auto& [number, layer] : sheet->Scene().layers) {
            const LayerIndex* index = sheet->IndexOf(number);
            if (index != nullptr && viewer.Shows(number))
                CollectLegend(*sheet, layer, *index, box, lines, symbols);
        }
    }
    std::erase_if(lines, [](const auto& entry) { return entry.second.sheet == nullptr; });
    Json json;
    json.Begin('{').Key("lines").Begin('[');
    for (const auto& [code, entry] : lines) {
        json.Begin('{').Member("code", code).Member("known", entry.known);
        json.Member("name", entry.known ? LineName(*entry.sheet, code) : std::string());
        PutPen(json, *entry.pen);
        json.End('}');
    }
    json.End(']').Key("symbols").Begin('[');
    for (const auto& [code, entry] : symbols) {
        json.Begin('{').Member("code", code).Member("name", SymbolName(*entry.sheet, code));
        PutShape(json, *entry.shape);
        json.End('}');
    }
    return json.End(']').End('}').Text();
}

// --- Finding ---

namespace {

struct Hit {
    int rank;
    uint32_t sheet;
    int layer;
    uint32_t number;
};

// 0: the whole text, 1: its beginning, 2: the beginning of a word, 3: anywhere; none when it is not there.
std::optional<int> RankOf(const std::string& folded, const std::string& wanted) {
    const size_t at = folded.find(wanted);
    if (at == std::string::npos) return std::nullopt;
    if (at == 0) return folded.size() == wanted.size() ? 0 : 1;
    return folded[at - 1] == ' ' ? 2 : 3;
}

}  // namespace

std::string FindTexts(const Viewer& viewer, const std::string& wanted, size_t most) {
    std::string foldedWanted;
    AppendFolded(wanted, foldedWanted);
    std::vector<Hit> hits;
    std::string folded;
    for (uint32_t s = 0; s < viewer.Sheets().size() && !foldedWanted.empty(); ++s) {
        for (const auto& [number, layer] : viewer.Sheets()[s]->Scene().layers) {
            for (uint32_t i = 0; i < layer.texts.size(); ++i) {
                folded.clear();
                AppendFolded(layer.texts[i].text, folded);
                if (const auto rank = RankOf(folded, foldedWanted)) hits.push_back({*rank, s, number, i});
            }
        }
    }
    std::stable_sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.rank < b.rank; });
    Json json;
    json.Begin('{').Member("count", hits.size()).Key("hits").Begin('[');
    for (size_t i = 0; i < std::min(hits.size(), most); ++i) {
        const Hit& hit = hits[i];
        const draw::Layer& layer = viewer.Sheets()[hit.sheet]->Scene().layers.at(hit.layer);
        const draw::PlacedText& text = layer.texts[hit.number];
        json.Begin('{').Member("text", text.text).Member("layer", hit.layer).Member("layerName", layer.name);
        json.Member("sheet", hit.sheet).Member("number", hit.number);
        json.Member("x", text.point.x).Member("y", text.point.y).End('}');
    }
    return json.End(']').End('}').Text();
}

// --- Picking ---

namespace {

struct Candidate {
    double distance;
    uint32_t sheet;
    int layer;
    int kind;
    uint32_t number;
};

double DistanceToSegment(draw::Point p, draw::Point a, draw::Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double squared = dx * dx + dy * dy;
    const double t = squared > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / squared, 0.0, 1.0) : 0;
    return std::hypot(a.x + t * dx - p.x, a.y + t * dy - p.y);
}

double DistanceToStroke(const draw::Layer& layer, const draw::Stroke& stroke, draw::Point place) {
    double nearest = std::numeric_limits<double>::infinity();
    for (uint64_t i = 1; i < stroke.count; ++i) {
        nearest = std::min(nearest, DistanceToSegment(place, layer.points[stroke.first + i - 1],
                                                      layer.points[stroke.first + i]));
    }
    return nearest;
}

void Collect(const LayerIndex& index, const draw::Layer& layer, draw::Point place, double reach,
             uint32_t sheet, int number, std::vector<Candidate>& candidates) {
    const draw::Box around = draw::Box{place.x, place.y, place.x, place.y}.Grown(reach);
    index.strokes.Search(around, [&](uint32_t i) {
        const double distance = DistanceToStroke(layer, layer.strokes[i], place);
        if (distance <= reach) candidates.push_back({distance, sheet, number, 0, i});
        return true;
    });
    // A hit on a symbol or text means it unless a line is quite near.
    index.symbols.Search(around, [&](uint32_t i) {
        candidates.push_back({reach * 0.4, sheet, number, 1, i});
        return true;
    });
    const draw::Box at{place.x, place.y, place.x, place.y};
    index.texts.Search(at, [&](uint32_t i) {
        candidates.push_back({reach * 0.3, sheet, number, 2, i});
        return true;
    });
}

void PutStroke(Json& json, const Sheet& sheet, const draw::Layer& layer, uint32_t number) {
    const draw::Stroke& stroke = layer.strokes[number];
    const draw::LineStyle& style = sheet.Scene().lineStyles[stroke.style];
    double length = 0;
    for (uint64_t i = 1; i < stroke.count; ++i) {
        const draw::Point a = layer.points[stroke.first + i - 1];
        const draw::Point b = layer.points[stroke.first + i];
        length += std::hypot(b.x - a.x, b.y - a.y);
    }
    json.Member("kind", "line").Member("code", style.code).Member("codeName", LineName(sheet, style.code));
    json.Member("known", style.known).Member("length", length).Member("points", stroke.count);
    PutPen(json, style.pen);
    json.Key("outline").Begin('[');
    for (uint32_t i = 0; i < std::min<uint32_t>(stroke.count, mostOutlinePoints); ++i)
        PutPoint(json, layer.points[stroke.first + i]);
    json.End(']');
}

void PutSymbol(Json& json, const Sheet& sheet, const draw::PlacedSymbol& symbol) {
    const draw::SymbolStyle& style = sheet.Scene().symbolStyles[symbol.style];
    json.Member("kind", "symbol")
        .Member("code", style.code)
        .Member("codeName", SymbolName(sheet, style.code));
    json.Member("rotation", symbol.rotation).Member("size", symbol.scale);
    json.Key("outline").Begin('[');
    PutPoint(json, symbol.point);
    json.End(']');
}

void PutText(Json& json, const Sheet& sheet, const draw::PlacedText& text) {
    const draw::Box box = sheet.Scene().ExtentOf(text);
    json.Member("kind", "text").Member("text", text.text).Member("height", text.style.height);
    json.Member("rotation", text.style.rotation).Key("outline").Begin('[');
    for (const draw::Point corner :
         {draw::Point{box.minX, box.minY}, draw::Point{box.maxX, box.minY}, draw::Point{box.maxX, box.maxY},
          draw::Point{box.minX, box.maxY}, draw::Point{box.minX, box.minY}}) {
        PutPoint(json, corner);
    }
    json.End(']');
}

void PutCandidate(Json& json, const Viewer& viewer, const Candidate& candidate) {
    const Sheet& sheet = *viewer.Sheets()[candidate.sheet];
    const draw::Layer& layer = sheet.Scene().layers.at(candidate.layer);
    json.Begin('{').Member("sheet", candidate.sheet).Member("sheetName", sheet.Name());
    json.Member("layer", candidate.layer).Member("layerName", layer.name).Member("number", candidate.number);
    if (candidate.kind == 0) PutStroke(json, sheet, layer, candidate.number);
    if (candidate.kind == 1) PutSymbol(json, sheet, layer.symbols[candidate.number]);
    if (candidate.kind == 2) PutText(json, sheet, layer.texts[candidate.number]);
    json.End('}');
}

}  // namespace

std::string Pick(const Viewer& viewer, draw::Point place, double reach) {
    std::vector<Candidate> candidates;
    for (uint32_t s = 0; s < viewer.Sheets().size(); ++s) {
        const Sheet& sheet = *viewer.Sheets()[s];
        for (const auto& [number, layer] : sheet.Scene().layers) {
            const LayerIndex* index = sheet.IndexOf(number);
            if (index != nullptr && viewer.Shows(number))
                Collect(*index, layer, place, reach, s, number, candidates);
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    if (candidates.size() > mostPicked) candidates.resize(mostPicked);
    Json json;
    json.Begin('[');
    for (const Candidate& candidate : candidates) PutCandidate(json, viewer, candidate);
    return json.End(']').Text();
}

}  // namespace vemrado::web
