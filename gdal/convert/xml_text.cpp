#include "xml_text.h"

#include <cpl_conv.h>
#include <cpl_string.h>

namespace vemrado::gdal {

void XmlText::Open(const char* name, const std::vector<Attribute>& attributes, const char* end) {
    text.append("<").append(name);
    for (const auto& [key, value] : attributes) {
        char* escaped = CPLEscapeString(value.c_str(), -1, CPLES_XML);
        text.append(" ").append(key).append("=\"").append(escaped).append("\"");
        CPLFree(escaped);
    }
    text.append(end);
}

}  // namespace vemrado::gdal
