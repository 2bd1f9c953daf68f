#include "scene_changes.h"

#include <limits>
#include <utility>

#include "words.h"

namespace vemrado::draw {
namespace {

constexpr uint32_t Rgb(uint32_t red, uint32_t green, uint32_t blue) {
    return red | green << 8 | blue << 16;
}

constexpr uint32_t grey = Rgb(165, 165, 165);
constexpr double changeWidth = 0.4;  // mm; covers the grey line below, however wide its code has it

void TurnGrey(Scene& scene) {
    for (LineStyle& style : scene.lineStyles) style.pen.colour = grey;
    for (auto& [number, layer] : scene.layers) {
        for (PlacedSymbol& symbol : layer.symbols) symbol.colour = grey;
        for (PlacedText& text : layer.texts) text.style.colour = grey;
    }
}

// The colours of `vkm diff -o`.
constexpr std::array<std::pair<const char*, uint32_t>, 3> looks = {
    {{"removed", Rgb(200, 30, 30)}, {"changed", Rgb(40, 80, 200)}, {"added", Rgb(30, 150, 60)}}};

}  // namespace

SceneChanges::SceneChanges(SceneBuilder& sceneBuilder, const SceneOptions& wanted,
                           client::Encoding oldEncoding)
    : builder(sceneBuilder),
      options(wanted),
      turn(map::TurnOf(sceneBuilder.AxisOrientation())),
      rotation(wanted.angleUnit, sceneBuilder.AxisOrientation()),
      oldDecoder(oldEncoding),
      newDecoder(wanted.encoding) {}

void SceneChanges::Take(const map::Change& change) {
    if (!options.layers.empty() && !options.layers.contains(change.layer)) return;
    const Colour colour = !change.now ? removed : !change.old ? added : changed;
    const map::ChangeSide& side = change.now ? *change.now : *change.old;
    switch (change.thing) {
        case map::ChangedThing::line:
            return AddLine(colour, side);
        case map::ChangedThing::symbol:
            return AddSymbol(colour, side);
        case map::ChangedThing::text:
            return AddText(colour, side, change.now ? newDecoder : oldDecoder);
    }
}

Point SceneChanges::OnMap(Point inFile) {
    const Point point = map::OnMap(inFile, turn);
    if (map::IsPlace(point)) whole.Add(point);
    return point;
}

void SceneChanges::AddLine(Colour colour, const map::ChangeSide& side) {
    Layer& layer = layers[colour];
    layer.strokes.push_back({0, static_cast<uint32_t>(side.points.size()), layer.points.size()});
    for (const Point point : side.points) layer.points.push_back(OnMap(point));
}

void SceneChanges::AddSymbol(Colour colour, const map::ChangeSide& side) {
    const map::Sign& sign = *side.sign;
    const Point point = OnMap(side.points.front());
    const double degrees = rotation.Degrees(sign.rotation);
    uint32_t style = 0;
    if (!options.symbols || !map::IsDrawable(sign.scale, degrees)) return;
    if (!builder.SymbolStyleOf(sign.symbol, style)) return;
    layers[colour].symbols.push_back({point, sign.scale, degrees, style, looks[colour].second});
}

void SceneChanges::AddText(Colour colour, const map::ChangeSide& side, client::TextDecoder& decoder) {
    const std::string words = decoder.Decode(side.words);
    map::MapText text;
    text.text = words;
    text.point = OnMap(side.points.front());
    text.heightOnPaper = side.text->height;
    text.rotation = rotation.Degrees(side.text->rotation);
    text.anchor = map::AnchorOf(side.text->valueD, turn.mirrored);
    text.face = map::FaceOf(side.text->valueF);
    if (words.empty() || map::FaultOf(text) != map::TextFault::none) return;
    PlacedText placed = PlacedTextOf(text);
    placed.style.colour = looks[colour].second;
    layers[colour].texts.push_back(std::move(placed));
}

void SceneChanges::AddTo(Scene& scene) {
    TurnGrey(scene);
    if (options.box) scene.whole.Add(whole);
    int number = std::numeric_limits<int>::max();
    for (size_t colour = layers.size(); colour-- > 0;) {
        Layer& layer = layers[colour];
        if (layer.IsEmpty()) continue;
        const auto style = static_cast<uint32_t>(scene.lineStyles.size());
        LineStyle& made = scene.lineStyles.emplace_back();
        made.pen.id = looks[colour].first;
        made.pen.colour = looks[colour].second;
        made.pen.width = changeWidth;
        for (Stroke& stroke : layer.strokes) stroke.style = style;
        layer.change = style;
        layer.name = HostWords().changes[colour];
        // Above all layers of the file, whatever their numbers are.
        while (!scene.layers.try_emplace(number, std::move(layer)).second) --number;
    }
}

}  // namespace vemrado::draw
