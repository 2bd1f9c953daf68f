#include "map/json_text.h"

#include <charconv>
#include <cmath>

namespace vemrado::map {

void AppendJsonReal(std::string& json, double value) {
    if (!std::isfinite(value)) {
        json += std::isnan(value) ? "\"NaN\"" : value > 0 ? "\"Infinity\"" : "\"-Infinity\"";
        return;
    }
    constexpr size_t room = 32;
    char text[room];
    json.append(text, std::to_chars(text, text + room, value).ptr);
}

void AppendJsonText(std::string& json, std::string_view utf8) {
    constexpr char digits[] = "0123456789abcdef";
    json += '"';
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (byte < ' ') {
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 15];
        } else {
            json += c;
        }
    }
    json += '"';
}

}  // namespace vemrado::map
