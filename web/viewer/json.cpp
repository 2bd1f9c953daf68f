#include "json.h"

namespace vemrado::web {

void AppendQuoted(std::string_view utf8, std::string& json) {
    json += '"';
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            json += escape;
        } else {
            json += c;
        }
    }
    json += '"';
}

Json& Json::String(std::string_view utf8) {
    Separate();
    AppendQuoted(utf8, text);
    return *this;
}

}  // namespace vemrado::web
