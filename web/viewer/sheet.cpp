#include "sheet.h"

#include <emscripten.h>

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace vemrado::web {
namespace {

constexpr uint64_t elementsBetweenLooks = 1024;  // at the clock

draw::Box Turned(draw::Point at, const draw::Box& box, double degrees, double scale) {
    const double angle = degrees * std::numbers::pi / 180;
    const double cosine = std::cos(angle) * scale;
    const double sine = std::sin(angle) * scale;
    draw::Box turned;
    for (const double x : {box.minX, box.maxX}) {
        for (const double y : {box.minY, box.maxY}) {
            turned.Add(draw::Point{at.x + x * cosine - y * sine, at.y + x * sine + y * cosine});
        }
    }
    return turned;
}

void IndexStrokes(const draw::Layer& layer, LayerIndex& index) {
    std::vector<draw::Box> boxes(layer.strokes.size());
    for (size_t i = 0; i < boxes.size(); ++i) {
        const draw::Stroke& stroke = layer.strokes[i];
        for (uint64_t k = 0; k < stroke.count; ++k) boxes[i].Add(layer.points[stroke.first + k]);
    }
    index.strokes = map::BoxTree(boxes);
}

void IndexSymbols(const draw::Scene& scene, const draw::Layer& layer, LayerIndex& index) {
    std::vector<draw::Box> boxes;
    boxes.reserve(layer.symbols.size());
    for (const draw::PlacedSymbol& symbol : layer.symbols) {
        const draw::Box& bounds = scene.symbolStyles[symbol.style].shape.bounds;
        const double side = std::max(bounds.Width(), bounds.Height()) * symbol.scale;
        index.largestSymbol = std::max(index.largestSymbol, side);
        boxes.push_back(
            Turned(symbol.point, bounds, symbol.rotation, symbol.scale / scene.MillimetresPerMetre()));
    }
    index.symbols = map::BoxTree(boxes);
}

void IndexTexts(const draw::Scene& scene, const draw::Layer& layer, LayerIndex& index) {
    std::vector<draw::Box> boxes;
    boxes.reserve(layer.texts.size());
    for (const draw::PlacedText& text : layer.texts) {
        index.tallestText = std::max(index.tallestText, text.style.height);
        boxes.push_back(scene.ExtentOf(text));
    }
    index.texts = map::BoxTree(boxes);
}

}  // namespace

Sheet::Sheet(std::string sheetName, int fileNumber, double fileLength, draw::SceneOptions options)
    : name(std::move(sheetName)),
      file(fileNumber),
      length(fileLength),
      encoding(options.encoding),
      offered(std::make_unique<OfferedFile>(name, file, length)),
      importer(std::make_unique<map::Importer>()) {
    builder = std::make_unique<draw::SceneBuilder>(*importer, std::move(options));
    if (!Open()) {
        state = SheetState::failed;
        if (failure.empty()) failure = offered->Boxes().empty() ? name : offered->Boxes().back();
        End();
    }
}

bool Sheet::Open() {
    map::OpenOptions open;
    open.fileName = name;
    open.symbology = true;
    try {
        return importer->Open(open);
    } catch (const std::exception& error) {
        failure = client::MessageToUtf8(error.what());
        return false;
    }
}

void Sheet::Read(double milliseconds) {
    if (state != SheetState::reading) return;
    const double end = emscripten_get_now() + milliseconds;
    try {
        for (uint64_t taken = 1;; ++taken) {
            const map::ElementKind kind = importer->Next();
            if (kind == map::ElementKind::none) break;
            ++(kind == map::ElementKind::line ? lines : texts);
            builder->Take(kind);
            if (taken % elementsBetweenLooks == 0 && emscripten_get_now() >= end) return;
        }
        state = importer->Complete() ? SheetState::complete : SheetState::incomplete;
    } catch (const std::exception& error) {
        state = SheetState::failed;
        failureLine = importer->LineCount() + 1;
        failure = client::MessageToUtf8(error.what());
    }
    End();
}

void Sheet::Stop() {
    if (state != SheetState::reading) return;
    state = SheetState::stopped;
    End();
}

void Sheet::End() {
    scene = builder->Finish();
    builder.reset();
    importer.reset();
}

void Sheet::MakeIndex() {
    for (const auto& [number, layer] : scene.layers) {
        LayerIndex& made = index[number];
        IndexStrokes(layer, made);
        IndexSymbols(scene, layer, made);
        IndexTexts(scene, layer, made);
    }
}

const LayerIndex* Sheet::IndexOf(int layer) const {
    const auto found = index.find(layer);
    return found == index.end() ? nullptr : &found->second;
}

draw::Box Sheet::Extent() const {
    draw::Box extent;
    for (const auto& [number, layer] : Scene().layers) {
        for (const draw::Point point : layer.points) extent.Add(point);
        for (const draw::PlacedSymbol& symbol : layer.symbols) extent.Add(symbol.point);
        for (const draw::PlacedText& text : layer.texts) extent.Add(text.point);
    }
    return extent;
}

bool OpenAgain(const Sheet& sheet, map::Importer& importer, OfferedFile&) {
    map::OpenOptions open;
    open.fileName = sheet.Name();
    return importer.Open(open);
}

}  // namespace vemrado::web
