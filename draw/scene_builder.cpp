#include "scene_builder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

#include "vemrado/vkm_details.h"
#include "zrv320/zrv320.h"

namespace vemrado::draw {
namespace {

constexpr double farthest = 1e9;       // m; farther is no place
constexpr double defaultWidth = 0.18;  // mm, of line types that give none
constexpr double unstyledWidth = 0.13;
constexpr double largestScale = 1e3;  // of a symbol
constexpr double tallestText = 1e3;   // mm
constexpr double longestReach = 200;  // mm of a symbol or text from its point
constexpr uint32_t unstyled = 0;      // the line style of elements without a line type

bool IsPlace(const std::array<double, 3>& point) {
    return std::abs(point[0]) <= farthest &&
           std::abs(point[1]) <= farthest;  // false for what is not a number
}

int CodeNumber(const std::string& code) {
    return static_cast<int>(
        std::clamp<long long>(std::strtoll(code.c_str(), nullptr, 10), INT32_MIN, INT32_MAX));
}

// The names that text faces go by in map files are numbers only; ours tell the numbers apart.
Font FontOf(int valueF) {
    switch (valueF) {
        case 2:
            return {false, false, true};
        case 3:
            return {false, true, false};
        case 4:
            return {false, true, true};
        case 5:
            return {true, false, false};
        case 6:
            return {true, true, false};
        case 7:
            return {true, true, true};
        default:
            return {};
    }
}

// The point of the text that stands on its insertion point, placed as on the keys of a numeric keypad.
void SetAnchor(TextStyle& style, int valueD) {
    const int key = valueD >= 1 && valueD <= 9 ? valueD - 1 : 1;
    constexpr Across across[] = {Across::left, Across::middle, Across::right};
    constexpr Upright upright[] = {Upright::baseline, Upright::middle, Upright::top};
    style.across = across[key % 3];
    style.upright = upright[key / 3];
}

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

}  // namespace

SceneBuilder::SceneBuilder(client::Importer& source, const client::SymbologyIndex& names, SceneOptions wanted)
    : importer(source), index(names), options(std::move(wanted)), decoder(options.encoding) {
    LineStyle style;
    style.pen.id = "line-plain";
    style.pen.width = unstyledWidth;
    scene.lineStyles.push_back(style);
}

// The header of the file has been read by the time of the first element.
void SceneBuilder::Begin() {
    begun = true;
    const double mapScale = importer.Scale();
    scene.mapScaleUsable = mapScale >= 1 && mapScale <= 1e8;
    if (scene.mapScaleUsable) scene.mapScale = mapScale;
    // In the file the first number grows to the west and the second to the south.
    double north[3] = {-1, 0, 0};
    importer.Interface().TransformPoint(north);
    scene.north = {north[0], north[1]};
    if (options.box) keep = options.box->Grown(longestReach / scene.MillimetresPerMetre());
}

void SceneBuilder::Take(client::ElementKind kind) {
    if (!begun) Begin();
    if (kind == client::ElementKind::line) AddLine(importer.Line());
    if (kind == client::ElementKind::text) AddText(importer.Text());
}

Scene SceneBuilder::Finish() {
    if (!begun) Begin();
    for (auto& [number, layer] : scene.layers) {
        std::ranges::stable_sort(layer.strokes, {}, &Stroke::style);
    }
    std::erase_if(scene.layers, [](const auto& layer) { return layer.second.IsEmpty(); });
    return std::move(scene);
}

Layer* SceneBuilder::LayerOf(int number, const std::string& name) {
    if (!options.layers.empty() && !options.layers.contains(number)) return nullptr;
    Layer& layer = scene.layers[number];
    if (layer.name.empty()) layer.name = decoder.Decode(name);
    return &layer;
}

void SceneBuilder::AddLine(const client::LineElement& line) {
    Layer* layer = LayerOf(line.layer, line.layerName);
    if (!layer) return;
    strokeBegin = layer->points.size();
    uint32_t style = unstyled;
    int position = 0;
    for (const client::ElementVertex& vertex : line.vertices) {
        const int current = position++;
        if (vertex.type == 0) continue;  // without a type letter an element has no point
        // An element without a code goes on with the line type of the element before it.
        if (!vertex.code.empty()) style = LineStyleOf(current, vertex.code);
        if (IsPlace(vertex.point)) {
            AddStep(*layer, vertex, vertex.type == 'P', style);
            if (vertex.symbolCode != 0 && options.symbols) AddSymbol(*layer, current, vertex, style);
        } else {
            EndStroke(*layer);
            ++scene.skipped.points;
        }
    }
    EndStroke(*layer);
}

// Goes on to the point of an element: a stroke begins there, or a straight segment ends there.
void SceneBuilder::AddStep(Layer& layer, const client::ElementVertex& vertex, bool begins, uint32_t style) {
    const Point point{vertex.point[0], vertex.point[1]};
    if (begins) EndStroke(layer);
    const size_t count = layer.points.size() - strokeBegin;
    if (count > 1 && style != strokeStyle) {
        const Point joint = layer.points.back();
        EndStroke(layer);
        layer.points.push_back(joint);
    }
    strokeStyle = style;
    layer.points.push_back(point);
}

void SceneBuilder::EndStroke(Layer& layer) {
    const std::span<const Point> points = std::span(layer.points).subspan(strokeBegin);
    Box bounds;
    for (const Point point : points) bounds.Add(point);
    const bool seen = !options.box || options.box->Meets(bounds);
    if (points.size() > 1 && seen) {
        layer.strokes.push_back({strokeStyle, static_cast<uint32_t>(points.size()), strokeBegin});
    } else {
        layer.points.resize(strokeBegin);
    }
    strokeBegin = layer.points.size();
}

void SceneBuilder::AddSymbol(Layer& layer, int position, const client::ElementVertex& vertex,
                             uint32_t style) {
    uint32_t symbol = 0;
    if (!SymbolStyleOf(position, vertex.symbolCode, symbol)) return;
    const double rotation = Degrees(vertex.valueU);
    if (!(vertex.valueM > 0 && vertex.valueM <= largestScale) || !std::isfinite(rotation)) {
        ++scene.skipped.symbols;
        return;
    }
    const Point point{vertex.point[0], vertex.point[1]};
    if (keep && !keep->Contains(point)) return;
    layer.symbols.push_back({point, vertex.valueM, rotation, symbol, scene.lineStyles[style].pen.colour});
}

void SceneBuilder::AddText(const client::TextElement& text) {
    Layer* layer = LayerOf(text.layer, text.layerName);
    if (!layer || text.text.empty()) return;
    PlacedText placed;
    placed.point = {text.point[0], text.point[1]};
    placed.style.height = text.scaledH * 1000 / importer.Scale();
    placed.style.rotation = Degrees(text.valueU);
    if (!IsPlace(text.point)) {
        ++scene.skipped.points;
        return;
    }
    if (!(placed.style.height > 0 && placed.style.height <= tallestText) ||
        !std::isfinite(placed.style.rotation)) {
        ++scene.skipped.texts;
        return;
    }
    if (keep && !keep->Contains(placed.point)) return;
    placed.style.font = FontOf(text.valueF);
    SetAnchor(placed.style, text.valueD);
    placed.text = decoder.Decode(text.text);
    std::ranges::replace_if(placed.text, IsControl, ' ');
    layer->texts.push_back(std::move(placed));
}

uint32_t SceneBuilder::LineStyleOf(int position, const std::string& code) {
    const int number = CodeNumber(code);
    const auto known = lineStyleOfCode.find(number);
    if (known != lineStyleOfCode.end()) return known->second;
    LineStyle style;
    style.code = number;
    style.pen.id = "line-" + std::to_string(number);
    style.pen.width = unstyledWidth;
    unsigned int colour = 0;
    int pattern = 0;
    if (importer.Interface().GetElementLineStyle(position, &colour, &pattern)) {
        style.known = true;
        style.pen.colour = colour;
        const client::SymbologyIndex::LineCode* line = index.FindLine(number);
        style.pen.width = line && line->width > 0 ? line->width : defaultWidth;
        SetDashes(style.pen, ZrvLinePattern(pattern));
    }
    const auto made = static_cast<uint32_t>(scene.lineStyles.size());
    scene.lineStyles.push_back(std::move(style));
    lineStyleOfCode.emplace(number, made);
    return made;
}

// False when the symbology has no drawing for the code.
bool SceneBuilder::SymbolStyleOf(int position, int code, uint32_t& style) {
    constexpr uint32_t none = UINT32_MAX;
    const auto known = symbolStyleOfCode.find(code);
    if (known != symbolStyleOfCode.end()) {
        style = known->second;
        return style != none;
    }
    SymbolShape shape = MakeSymbolShape("symbol-" + std::to_string(code),
                                        ZrvPointPattern(importer.Interface().GetElementSymbol(position)));
    style = shape.strokes.empty() ? none : static_cast<uint32_t>(scene.symbolStyles.size());
    if (style != none) scene.symbolStyles.push_back({code, std::move(shape)});
    symbolStyleOfCode.emplace(code, style);
    return style != none;
}

double SceneBuilder::Degrees(double angle) const {
    double perTurn = 400;
    if (options.angleUnit == AngleUnit::degree) perTurn = 360;
    if (options.angleUnit == AngleUnit::radian) perTurn = 2 * std::numbers::pi;
    return std::fmod(angle, perTurn) / perTurn * 360;
}

}  // namespace vemrado::draw
