#include <algorithm>
#include <array>
#include <utility>

#include "client/text_encoding.h"
#include "info_report.h"
#include "json_writer.h"

namespace vemrado::tools {
namespace {

using Json = nlohmann::ordered_json;

// JSON has no number for infinities.
Json Real(double value) {
    std::array<char, numberRoom> text{};
    char* end = FormatReal(value, text.data());
    return Json::parse(text.data(), end);
}

Json Types(const LayerCounts& layer) {
    Json types = Json::object();
    for (size_t i = 0; i < typeLetters.size(); ++i) types[std::string(1, typeLetters[i])] = layer.types[i];
    types["other"] = layer.types[otherTypeLetter];
    types["none"] = layer.types[noTypeLetter];
    return types;
}

Json Counts(const LayerCounts& layer) {
    return {{"lines", layer.lines},
            {"elements", layer.elements},
            {"types", Types(layer)},
            {"texts", layer.texts},
            {"symbols", layer.symbols}};
}

Json Codes(const std::map<int, uint64_t>& codes) {
    Json object = Json::object();
    for (const auto& [code, count] : codes) object[std::to_string(code)] = count;
    return object;
}

Json Layer(int number, const LayerCounts& summary) {
    Json layer = {{"layer", number}};
    layer.update(Counts(summary));
    Json elementCodes = Json::object();
    for (const auto& [code, count] : summary.SortedElementCodes())
        elementCodes[client::MessageToUtf8(code)] = count;
    layer["elementCodes"] = std::move(elementCodes);
    layer["symbolCodes"] = Codes(summary.symbolCodes);
    layer["textCodes"] = Codes(summary.textCodes);
    return layer;
}

Json Extents(const std::array<Range, 2>& extents) {
    if (!extents[0].Found() || !extents[1].Found()) return nullptr;
    return {{"minimum", {Real(extents[0].minimum), Real(extents[1].minimum)}},
            {"maximum", {Real(extents[0].maximum), Real(extents[1].maximum)}}};
}

}  // namespace

nlohmann::ordered_json ReportJson(const FileReport& report) {
    Json json = {{"file", report.file}, {"complete", report.complete}};
    if (!report.error.empty()) json["error"] = report.error;
    if (!report.opened) return json;
    json["scale"] = Real(report.scale);
    json["coordinates"] = report.relative ? "relative" : "absolute";
    json["extents"] = Extents(report.summary.Extents());
    json["linesRead"] = report.linesRead;
    json["total"] = Counts(report.summary.Total());
    json["layers"] = Json::array();
    for (const auto& [number, layer] : report.summary.Layers())
        json["layers"].push_back(Layer(number, layer));
    return json;
}

}  // namespace vemrado::tools
