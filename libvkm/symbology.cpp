#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace vemrado::capi {
namespace {

std::vector<int32_t> NumbersOf(const std::vector<map::CodeEntry>& entries) {
    std::vector<int32_t> numbers;
    for (const map::CodeEntry& entry : entries) numbers.push_back(entry.code);
    return numbers;
}

}  // namespace

SymbologyLookup::SymbologyLookup(std::shared_ptr<Source> readSource, const Options& readOptions)
    : source(std::move(readSource)), options(readOptions) {
    if (!options.withSymbology) return;
    {
        const ModuleCalls calls(*source, state);
        importer.Details().SetDataDirectory(options.dataDirectory.c_str());
        importer.Details().LoadSymbology(1);
        lineCodes = NumbersOf(map::LineCodes(importer.Details()));
        symbolCodes = NumbersOf(map::SymbolCodes(importer.Details()));
    }
    for (const std::string& text : state.boxes) TellWarning(options, text, {});
    state.boxes.clear();
}

const SymbologyLookup::Style& SymbologyLookup::StyleOf(int code) {
    const auto [place, isNew] = styles.try_emplace(code);
    Style& style = place->second;
    if (!isNew || !options.withSymbology) return style;
    const ModuleCalls calls(*source, state);
    const std::optional<map::Pen> pen = map::FindPen(importer.Details(), code);
    if (!pen) return style;
    style.known = true;
    style.pen = *pen;
    style.name = map::LineCodeName(importer.Details(), code);
    return style;
}

const SymbologyLookup::Symbol& SymbologyLookup::SymbolOf(int code) {
    const auto [place, isNew] = symbols.try_emplace(code);
    Symbol& symbol = place->second;
    if (!isNew || !options.withSymbology) return symbol;
    const ModuleCalls calls(*source, state);
    const std::optional<map::SymbolDrawing> drawing = map::FindDrawing(importer.Details(), code);
    if (!drawing) return symbol;
    symbol.known = true;
    symbol.name = map::SymbolCodeName(importer.Details(), code);
    symbol.bounds = drawing->bounds;
    for (const std::vector<map::Point>& stroke : drawing->strokes) {
        symbol.strokes.push_back(static_cast<uint32_t>(symbol.points.size() / 2));
        for (const map::Point& point : stroke) symbol.points.insert(symbol.points.end(), {point.x, point.y});
    }
    return symbol;
}

}  // namespace vemrado::capi

SymbologyLookup& vkm_reader::Symbology() {
    if (!symbology) symbology = std::make_unique<SymbologyLookup>(source, options);
    return *symbology;
}

vkm_status vkm_get_line_style(vkm_reader* reader, int32_t code, vkm_line_style* style, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && style != nullptr && SaysSize(style->size),
                "vkm_get_line_style: null, or a style that does not say its size");
        const SymbologyLookup::Style& found = reader->Symbology().StyleOf(code);
        if (!found.known) return VKM_NOTHING;
        vkm_line_style values = {};
        values.name = found.name.c_str();
        values.colour = found.pen.colour;
        values.visible = found.pen.invisible ? 0 : 1;
        values.width = found.pen.width;
        values.dashes = found.pen.dashes.empty() ? nullptr : found.pen.dashes.data();
        values.dash_count = found.pen.dashes.size();
        FillIn(style, values);
        return VKM_OK;
    });
}

vkm_status vkm_get_symbol(vkm_reader* reader, int32_t code, vkm_symbol* symbol, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && symbol != nullptr && SaysSize(symbol->size),
                "vkm_get_symbol: null, or a symbol that does not say its size");
        const SymbologyLookup::Symbol& found = reader->Symbology().SymbolOf(code);
        if (!found.known) return VKM_NOTHING;
        vkm_symbol values = {};
        values.name = found.name.c_str();
        values.points = found.points.empty() ? nullptr : found.points.data();
        values.point_count = found.points.size() / 2;
        values.strokes = found.strokes.empty() ? nullptr : found.strokes.data();
        values.stroke_count = found.strokes.size();
        const map::Box& box = found.bounds;
        const double bounds[4] = {box.minX, box.minY, box.maxX, box.maxY};
        std::copy_n(bounds, 4, values.bounds);
        FillIn(symbol, values);
        return VKM_OK;
    });
}

vkm_status vkm_line_codes(vkm_reader* reader, const int32_t** codes, size_t* count, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && codes != nullptr && count != nullptr, "vkm_line_codes: null");
        const std::vector<int32_t>& all = reader->Symbology().LineCodes();
        *codes = all.data();
        *count = all.size();
        return VKM_OK;
    });
}

vkm_status vkm_symbol_codes(vkm_reader* reader, const int32_t** codes, size_t* count, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && codes != nullptr && count != nullptr, "vkm_symbol_codes: null");
        const std::vector<int32_t>& all = reader->Symbology().SymbolCodes();
        *codes = all.data();
        *count = all.size();
        return VKM_OK;
    });
}
