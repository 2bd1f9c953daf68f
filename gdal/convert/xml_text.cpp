#include "xml_text.h"

#include <cpl_conv.h>
#include <cpl_string.h>

namespace vemrado::gdal {

namespace {

void AppendEscaped(std::string& text, const std::string& characters) {
    char* escaped = CPLEscapeString(characters.c_str(), -1, CPLES_XML);
    text.append(escaped);
    CPLFree(escaped);
}

}  // namespace

void XmlText::Leaf(const char* name, const std::vector<Attribute>& attributes,
                   const std::string& characters) {
    Open(name, attributes, ">");
    AppendEscaped(text, characters);
    text.append("</").append(name).append(">\n");
}

void XmlText::Open(const char* name, const std::vector<Attribute>& attributes, const char* end) {
    text.append("<").append(name);
    for (const auto& [key, value] : attributes) {
        text.append(" ").append(key).append("=\"");
        AppendEscaped(text, value);
        text.append("\"");
    }
    text.append(end);
}

}  // namespace vemrado::gdal
