#include "scene_builder.h"

#include <algorithm>
#include <utility>

#include "map/placement.h"
#include "map/symbology.h"

namespace vemrado::draw {
namespace {

constexpr double longestReach = 200;  // mm of a symbol or text from its point
constexpr uint32_t unstyled = 0;      // the line style of elements without a line type

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Turns the y axis of a drawing over.
void Mirror(SymbolShape& shape) {
    for (auto& stroke : shape.strokes) {
        for (Point& point : stroke) point.y = -point.y;
    }
    shape.bounds = {shape.bounds.minX, -shape.bounds.maxY, shape.bounds.maxX, -shape.bounds.minY};
}

}  // namespace

PlacedText PlacedTextOf(const map::MapText& text) {
    PlacedText placed;
    placed.point = text.point;
    placed.style.height = text.heightOnPaper;
    placed.style.rotation = text.rotation;
    placed.style.face = text.face;
    placed.style.across = text.anchor.across;
    placed.style.upright = text.anchor.upright;
    placed.text = text.text;
    std::ranges::replace_if(placed.text, IsControl, ' ');
    return placed;
}

SceneBuilder::SceneBuilder(map::Importer& source, SceneOptions wanted)
    : importer(source), options(std::move(wanted)), reading(source, options.encoding, options.angleUnit) {
    LineStyle style;
    style.pen.id = "line-plain";
    scene.lineStyles.push_back(style);
}

// The header of the file has been read by the time of the first element.
void SceneBuilder::Begin() {
    begun = true;
    scene.mapScaleUsable = map::IsScale(importer.Scale());
    scene.mapScale = map::UsableScale(importer.Scale());
    const map::Turn turn = map::TurnOf(importer.AxisOrientation());
    scene.north = turn.north;
    scene.mirrored = turn.mirrored;
    if (options.box) keep = options.box->Grown(longestReach / scene.MillimetresPerMetre());
}

void SceneBuilder::Take(map::ElementKind kind) {
    if (!begun) Begin();
    reading.Take(kind);
    if (options.box) AddPlaces(kind);
    if (kind == map::ElementKind::line) AddLine(reading.Line());
    if (kind == map::ElementKind::text) AddText(reading.Text());
}

void SceneBuilder::AddPlaces(map::ElementKind kind) {
    if (kind == map::ElementKind::line) {
        for (const Point point : reading.Line().points) scene.whole.Add(point);
    } else if (kind == map::ElementKind::text && map::IsPlace(reading.Text().point)) {
        scene.whole.Add(reading.Text().point);
    }
}

Scene SceneBuilder::Finish() {
    if (!begun) Begin();
    for (auto& [number, layer] : scene.layers) {
        std::ranges::stable_sort(layer.strokes, {}, &Stroke::style);
    }
    std::erase_if(scene.layers, [](const auto& layer) { return layer.second.IsEmpty(); });
    return std::move(scene);
}

Layer* SceneBuilder::LayerOf(int number, std::string_view name) {
    if (!options.layers.empty() && !options.layers.contains(number)) return nullptr;
    Layer& layer = scene.layers[number];
    if (layer.name.empty()) layer.name = name;
    return &layer;
}

void SceneBuilder::AddLine(const map::MapLine& line) {
    Layer* layer = LayerOf(line.layer, line.layerName);
    if (!layer) return;
    for (const map::Stroke& stroke : line.strokes) {
        AddStroke(*layer, line.points.subspan(stroke.first, stroke.count), stroke.code);
    }
    if (options.symbols) {
        for (const map::PlacedSymbol& symbol : line.symbols) AddSymbol(*layer, symbol);
    }
    scene.skipped.points += line.pointsLeftOut;
}

void SceneBuilder::AddStroke(Layer& layer, std::span<const Point> points, const map::Code& code) {
    const uint32_t style = LineStyleOf(code);
    if (options.box) {
        Box bounds;
        for (const Point point : points) bounds.Add(point);
        if (!options.box->Meets(bounds)) return;
    }
    layer.strokes.push_back({style, static_cast<uint32_t>(points.size()), layer.points.size()});
    layer.points.insert(layer.points.end(), points.begin(), points.end());
}

void SceneBuilder::AddSymbol(Layer& layer, const map::PlacedSymbol& symbol) {
    uint32_t style = 0;
    if (!SymbolStyleOf(symbol.symbol, style)) return;
    if (!symbol.drawable) {
        ++scene.skipped.symbols;
        return;
    }
    if (keep && !keep->Contains(symbol.point)) return;
    const uint32_t colour = scene.lineStyles[LineStyleOf(symbol.code)].pen.colour;
    layer.symbols.push_back({symbol.point, symbol.scale, symbol.rotation, style, colour});
}

void SceneBuilder::AddText(const map::MapText& text) {
    Layer* layer = LayerOf(text.layer, text.layerName);
    if (!layer || text.text.empty()) return;
    if (text.fault != map::TextFault::none) {
        ++(text.fault == map::TextFault::place ? scene.skipped.points : scene.skipped.texts);
        return;
    }
    if (keep && !keep->Contains(text.point)) return;
    layer->texts.push_back(PlacedTextOf(text));
}

uint32_t SceneBuilder::LineStyleOf(const map::Code& code) {
    if (!code.Given()) return unstyled;
    const auto known = lineStyleOfCode.find(code.number);
    if (known != lineStyleOfCode.end()) return known->second;
    LineStyle style;
    style.code = code.number;
    if (auto pen = map::FindPen(importer.Details(), code.number)) {
        style.known = true;
        style.name = map::LineCodeName(importer.Details(), code.number);
        static_cast<map::Pen&>(style.pen) = std::move(*pen);
    }
    style.pen.id = "line-" + std::to_string(code.number);
    const auto made = static_cast<uint32_t>(scene.lineStyles.size());
    scene.lineStyles.push_back(std::move(style));
    lineStyleOfCode.emplace(code.number, made);
    return made;
}

bool SceneBuilder::SymbolStyleOf(int code, uint32_t& style) {
    constexpr uint32_t none = UINT32_MAX;
    const auto known = symbolStyleOfCode.find(code);
    if (known != symbolStyleOfCode.end()) {
        style = known->second;
        return style != none;
    }
    auto drawing = map::FindDrawing(importer.Details(), code);
    const bool drawn = drawing && !drawing->strokes.empty();
    style = drawn ? static_cast<uint32_t>(scene.symbolStyles.size()) : none;
    symbolStyleOfCode.emplace(code, style);
    if (!drawn) return false;
    SymbolStyle made{code, map::SymbolCodeName(importer.Details(), code), {std::move(*drawing), {}}};
    made.shape.id = "symbol-" + std::to_string(code);
    if (scene.mirrored) Mirror(made.shape);
    scene.symbolStyles.push_back(std::move(made));
    return true;
}

}  // namespace vemrado::draw
