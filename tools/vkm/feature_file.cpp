#include "feature_file.h"

#include "client/system.h"
#include "failure.h"
#include "map/json_text.h"
#if VEMRADO_CONVERTER
#include "convert_library.h"
#endif

namespace vemrado::tools {
namespace {

// A style of QGIS by the values of a field.
std::string Qml(bool lines, const char* field, std::span<const StyledValue> values) {
    std::string categories;
    std::string symbols;
    for (const StyledValue& each : values) {
        const std::string value = each.value;
        const std::string colour = std::string(each.colour) + ",255";
        categories += "<category value=\"" + value + "\" label=\"" + value + "\" symbol=\"" + value +
                      "\" render=\"true\"/>";
        symbols += "<symbol name=\"" + value + "\" type=\"" + (lines ? "line" : "marker") +
                   "\" alpha=\"1\"><layer class=\"" + (lines ? "SimpleLine" : "SimpleMarker") +
                   "\" enabled=\"1\">" +
                   (lines ? "<prop k=\"line_color\" v=\"" + colour + "\"/><prop k=\"line_width\" v=\"0.8\"/>"
                          : "<prop k=\"color\" v=\"" + colour +
                                "\"/><prop k=\"name\" v=\"circle\"/><prop k=\"size\" v=\"3\"/>") +
                   "</layer></symbol>";
    }
    return "<!DOCTYPE qgis PUBLIC 'http://mrcc.com/qgis.dtd' 'SYSTEM'><qgis version=\"3.22\"><renderer-v2 "
           "type=\"categorizedSymbol\" attr=\"" +
           std::string(field) + "\"><categories>" + categories + "</categories><symbols>" + symbols +
           "</symbols></renderer-v2></qgis>";
}

// East and north, as EPSG:5514 has them.
void AppendPosition(std::string& json, map::Point point) {
    json += '[';
    map::AppendJsonReal(json, -point.y);
    json += ',';
    map::AppendJsonReal(json, -point.x);
    json += ']';
}

}  // namespace

FeatureFile::FeatureFile(const std::string& outputName) : output(outputName) {
#if VEMRADO_CONVERTER
    LoadFeatureWriter();
#else
    throw Failure(exitUsage, "this program writes no such output; it has no GDAL");
#endif
}

size_t FeatureFile::AddLayer(const std::string& name, bool lines, const char* styledField,
                             std::span<const StyledValue> values) {
    layers.push_back({name, {}, Qml(lines, styledField, values)});
    return layers.size() - 1;
}

void FeatureFile::Add(size_t layer, std::span<const map::Point> points, const std::string& properties) {
    std::string& json = layers[layer].features;
    if (!json.empty()) json += ",\n";
    json += R"({"type":"Feature","properties":{)" + properties + R"(},"geometry":)";
    if (points.empty()) {
        json += "null}";
        return;
    }
    json +=
        points.size() > 1 ? R"({"type":"LineString","coordinates":[)" : R"({"type":"Point","coordinates":)";
    for (const map::Point& point : points) {
        if (&point != &points.front()) json += ',';
        AppendPosition(json, point);
    }
    json += points.size() > 1 ? "]}}" : "}}";
}

void FeatureFile::Write() {
#if VEMRADO_CONVERTER
    std::vector<gdal::FeatureLayer> made;
    for (Layer& layer : layers) {
        made.push_back(
            {layer.name,
             R"({"type":"FeatureCollection","name":")" + layer.name +
                 R"(","crs":{"type":"name","properties":{"name":"urn:ogc:def:crs:EPSG::5514"}},"features":[)" +
                 layer.features + "]}",
             layer.qml});
    }
    gdal::ConvertResult result;
    (*LoadFeatureWriter())(made, output, result);
    if (result.problem.empty()) return;
    throw Failure(result.outcome == gdal::ConvertOutcome::badRequest ? exitUsage : exitInternal,
                  result.problem);
#endif
}

}  // namespace vemrado::tools
