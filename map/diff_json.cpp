// The sides of a change as JSON, with the members that `vkm dump` has.

#include "map/diff.h"
#include "map/json_text.h"

namespace vemrado::map {
namespace {

void AppendPoint(std::string& json, Point point) {
    json += '[';
    AppendJsonReal(json, point.x);
    json += ',';
    AppendJsonReal(json, point.y);
    json += ']';
}

void AppendReal(std::string& json, std::string_view name, double value) {
    json.append(",\"").append(name).append("\":");
    AppendJsonReal(json, value);
}

}  // namespace

std::string SideJson(const ChangeSide& side, client::TextDecoder& decoder) {
    std::string json = "{";
    if (side.text != nullptr) {
        json += "\"text\":";
        AppendJsonText(json, decoder.Decode(side.words));
        json += ",\"point\":";
        AppendPoint(json, side.points.front());
        AppendReal(json, "D", side.text->valueD);
        AppendReal(json, "F", side.text->valueF);
        AppendReal(json, "H", side.text->height);
        AppendReal(json, "K", side.text->code);
        AppendReal(json, "U", side.text->rotation);
        return json += '}';
    }
    json += "\"K\":";
    AppendJsonText(json, decoder.Decode(side.code));
    if (side.sign != nullptr) {
        AppendReal(json, "S", side.sign->symbol);
        AppendReal(json, "M", side.sign->scale);
        AppendReal(json, "U", side.sign->rotation);
        json += ",\"point\":";
        AppendPoint(json, side.points.front());
        return json += '}';
    }
    json += ",\"points\":[";
    for (const Point& point : side.points) {
        if (&point != &side.points.front()) json += ',';
        AppendPoint(json, point);
    }
    return json += "]}";
}

}  // namespace vemrado::map
