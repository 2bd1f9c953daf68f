#include "viewer.h"

#include <algorithm>

#include "draw/clip.h"

namespace vemrado::web {
namespace {

constexpr double thinBelow = 0.15;    // pixels to a millimetre on paper
constexpr double symbolWidth = 0.18;  // mm of the strokes of symbols
constexpr double clipMargin = 2;      // mm beyond the view to which strokes go on, more than any line is wide

// In the order in which they are drawn.
std::vector<uint32_t> Found(const map::BoxTree& tree, const draw::Box& wanted) {
    std::vector<uint32_t> numbers;
    tree.Search(wanted, [&](uint32_t number) {
        numbers.push_back(number);
        return true;
    });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

void PaintStroke(const draw::Layer& layer, const draw::Stroke& stroke, const View& view, uint32_t colour,
                 Pixels& pixels) {
    const auto place = [&](uint64_t i) {
        const draw::Point point = layer.points[stroke.first + i];
        return draw::Point{(point.x - view.upperLeft.x) * view.pixelsPerMetre,
                           (view.upperLeft.y - point.y) * view.pixelsPerMetre};
    };
    draw::Point last = place(0);
    for (uint64_t i = 1; i < stroke.count; ++i) {
        const draw::Point point = place(i);
        const bool unseen =
            i + 1 < stroke.count && std::abs(point.x - last.x) < 0.3 && std::abs(point.y - last.y) < 0.3;
        if (unseen) continue;
        pixels.Line(last, point, colour);
        last = point;
    }
}

}  // namespace

std::set<int> Viewer::Layers() const {
    std::set<int> numbers;
    for (const auto& sheet : sheets) {
        for (const auto& [number, layer] : sheet->Scene().layers) numbers.insert(number);
    }
    return numbers;
}

draw::Box Viewer::Extent() const {
    draw::Box extent;
    for (const auto& sheet : sheets) {
        const draw::Box box = sheet->Extent();
        if (box.IsEmpty()) continue;
        extent.Add(draw::Point{box.minX, box.minY});
        extent.Add(draw::Point{box.maxX, box.maxY});
    }
    return extent;
}

bool Viewer::IsThin(double pixelsPerMetre) const {
    return std::all_of(sheets.begin(), sheets.end(), [&](const auto& sheet) {
        return pixelsPerMetre / sheet->Scene().MillimetresPerMetre() < thinBelow;
    });
}

void Viewer::PaintThin(const View& view, Pixels& pixels, bool indexed) const {
    const draw::Box ground = view.Ground().Grown(2 / view.pixelsPerMetre);
    for (const int number : Layers()) {
        if (!Shows(number)) continue;
        for (const auto& sheet : sheets) {
            const draw::Scene& scene = sheet->Scene();
            const auto layer = scene.layers.find(number);
            if (layer == scene.layers.end()) continue;
            const auto paint = [&](const draw::Stroke& stroke) {
                const draw::Pen& pen = scene.lineStyles[stroke.style].pen;
                if (!pen.invisible) PaintStroke(layer->second, stroke, view, pen.colour, pixels);
            };
            const LayerIndex* index = indexed ? sheet->IndexOf(number) : nullptr;
            if (index != nullptr) {
                for (const uint32_t i : Found(index->strokes, ground)) paint(layer->second.strokes[i]);
            } else {
                for (const draw::Stroke& stroke : layer->second.strokes) paint(stroke);
            }
        }
    }
}

void Viewer::Draw(const View& view, CommandCanvas& canvas) const {
    for (const int number : Layers()) {
        if (!Shows(number)) continue;
        for (const auto& sheet : sheets) {
            const draw::Scene& scene = sheet->Scene();
            const auto layer = scene.layers.find(number);
            if (layer != scene.layers.end()) DrawLayer(view, *sheet, number, layer->second, canvas);
        }
    }
}

void Viewer::DrawLayer(const View& view, const Sheet& sheet, int number, const draw::Layer& layer,
                       CommandCanvas& canvas) const {
    const LayerIndex* index = sheet.IndexOf(number);
    if (index == nullptr) return;
    const draw::Scene& scene = sheet.Scene();
    const double paper = scene.MillimetresPerMetre();
    const draw::Box ground = view.Ground().Grown(clipMargin / paper);
    canvas.SetScale(view.pixelsPerMetre / paper);
    const auto onPaper = [&](draw::Point point) {
        return draw::Point{(point.x - view.upperLeft.x) * paper, (view.upperLeft.y - point.y) * paper};
    };
    if (!IsThin(view.pixelsPerMetre)) {
        const draw::Box seen =
            draw::Box{0, 0, view.width * canvas.Resolution(), view.height * canvas.Resolution()}.Grown(
                clipMargin);
        std::vector<draw::Point> points;
        for (const uint32_t i : Found(index->strokes, ground)) {
            const draw::Stroke& stroke = layer.strokes[i];
            points.clear();
            for (uint64_t k = 0; k < stroke.count; ++k)
                points.push_back(onPaper(layer.points[stroke.first + k]));
            draw::ClipStroke(points, seen, [&](std::span<const draw::Point> part, double lengthBefore) {
                canvas.Line(part, scene.lineStyles[stroke.style].pen, lengthBefore);
            });
        }
    }
    if (index->largestSymbol >= canvas.Resolution()) {
        static draw::Pen pen;
        pen.width = symbolWidth;
        for (const uint32_t i : Found(index->symbols, ground)) {
            const draw::PlacedSymbol& symbol = layer.symbols[i];
            if (pen.colour != symbol.colour) canvas.SetScale(view.pixelsPerMetre / paper);
            pen.colour = symbol.colour;
            canvas.Symbol(scene.symbolStyles[symbol.style].shape, onPaper(symbol.point), symbol.scale,
                          symbol.rotation, pen);
        }
    }
    if (index->tallestText < 2 * canvas.Resolution()) return;
    for (const uint32_t i : Found(index->texts, ground)) {
        const draw::PlacedText& text = layer.texts[i];
        canvas.Text(text.text, onPaper(text.point), text.style);
    }
}

std::string LineName(const Sheet& sheet, int code) {
    const auto& styles = sheet.Scene().lineStyles;
    const auto found =
        std::find_if(styles.begin(), styles.end(), [&](const auto& style) { return style.code == code; });
    return found != styles.end() ? found->name : std::string();
}

std::string SymbolName(const Sheet& sheet, int code) {
    const auto& styles = sheet.Scene().symbolStyles;
    const auto found =
        std::find_if(styles.begin(), styles.end(), [&](const auto& style) { return style.code == code; });
    return found != styles.end() ? found->name : std::string();
}

}  // namespace vemrado::web
