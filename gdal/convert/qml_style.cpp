#include "qml_style.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <map>
#include <vector>

#include "styles.h"
#include "xml_text.h"

namespace vemrado::gdal {

namespace {

constexpr double plainWidth = 0.13;   // mm, of lines without a line type
constexpr double symbolWidth = 0.18;  // mm, of the strokes of symbols
constexpr const char* mapUnit = "MapUnit";

struct Property {
    const char* name;
    std::string value;
};

// An expression that QGIS works out for each feature.
struct Dynamic {
    const char* name;
    const char* expression;
};

std::string ColourOf(uint32_t colour) {
    return CPLString().Printf("%u,%u,%u,255", colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF);
}

void AddOption(XmlText& xml, const char* name, const char* type, const std::string& value) {
    xml.Leaf("Option", {{"name", name}, {"type", type}, {"value", value}});
}

void AddDynamic(XmlText& xml, const char* element, const std::vector<Dynamic>& expressions) {
    const XmlText::Element outer(xml, element);
    const XmlText::Element map(xml, "Option", {{"type", "Map"}});
    AddOption(xml, "name", "QString", "");
    {
        const XmlText::Element properties(xml, "Option", {{"name", "properties"}, {"type", "Map"}});
        for (const Dynamic& dynamic : expressions) {
            const XmlText::Element property(xml, "Option", {{"name", dynamic.name}, {"type", "Map"}});
            AddOption(xml, "active", "bool", "true");
            AddOption(xml, "expression", "QString", dynamic.expression);
            AddOption(xml, "type", "int", "3");
        }
    }
    AddOption(xml, "type", "QString", "collection");
}

// A symbol of one layer.
void AddSymbol(XmlText& xml, const char* type, size_t name, const char* layerClass,
               const std::vector<Property>& properties, const std::vector<Dynamic>& expressions = {}) {
    const XmlText::Element symbol(xml, "symbol",
                                  {{"type", type},
                                   {"name", std::to_string(name)},
                                   {"alpha", "1"},
                                   {"clip_to_extent", "0"},  // dashes begin where the line does
                                   {"force_rhr", "0"}});
    const XmlText::Element layer(xml, "layer",
                                 {{"class", layerClass}, {"enabled", "1"}, {"locked", "0"}, {"pass", "0"}});
    {
        const XmlText::Element map(xml, "Option", {{"type", "Map"}});
        for (const Property& property : properties) AddOption(xml, property.name, "QString", property.value);
    }
    if (!expressions.empty()) AddDynamic(xml, "data_defined_properties", expressions);
}

std::string Number(double value) {
    return CPLString().Printf("%.6g", value);
}

// The document around a renderer of the class given; fill adds what stands in the renderer, after what
// follows it.
template <typename Fill, typename After>
std::string Document(const std::vector<XmlText::Attribute>& renderer, bool labels, Fill fill, After after) {
    XmlText xml("<!DOCTYPE qgis PUBLIC 'http://mrcc.com/qgis.dtd' 'SYSTEM'>\n");
    {
        const XmlText::Element qgis(xml, "qgis",
                                    {{"version", "3.22"},
                                     {"styleCategories", "Symbology|Labeling"},
                                     {"labelsEnabled", labels ? "1" : "0"}});
        {
            const XmlText::Element element(xml, "renderer-v2", renderer);
            fill(xml);
        }
        after(xml);
    }
    return xml.Text();
}

constexpr auto nothing = [](XmlText&) {};

void AddCategory(XmlText& xml, size_t symbol, const std::string& value, const std::string& label) {
    xml.Leaf("category",
             {{"symbol", std::to_string(symbol)}, {"value", value}, {"label", label}, {"render", "true"}});
}

std::string LabelOf(int code, const std::string& name) {
    return name.empty() ? std::to_string(code) : std::to_string(code) + " " + name;
}

std::vector<Property> LineProperties(const LinePen& pen, double groundPerMillimetre) {
    std::string dashes;
    for (const double length : pen.dashes)
        dashes += (dashes.empty() ? "" : ";") + Number(length * groundPerMillimetre);
    return {{"line_color", ColourOf(pen.colour)},
            {"line_style", pen.visible ? "solid" : "no"},
            {"line_width", Number(pen.width * groundPerMillimetre)},
            {"line_width_unit", mapUnit},
            {"capstyle", "flat"},
            {"joinstyle", "round"},
            {"use_custom_dash", pen.dashes.empty() ? "0" : "1"},
            {"customdash", dashes.empty() ? "5;2" : dashes},
            {"customdash_unit", mapUnit}};
}

// A categorised renderer: items is a map from codes to what has a name; draw(item, symbol) adds its symbol,
// item null: that of every other value.
template <typename Items, typename Draw>
std::string Categories(const char* field, const Items& items, Draw draw) {
    const auto fill = [&](XmlText& xml) {
        {
            const XmlText::Element categories(xml, "categories");
            size_t symbol = 0;
            for (const auto& [code, item] : items)
                AddCategory(xml, symbol++, std::to_string(code), LabelOf(code, item.name));
            AddCategory(xml, symbol, "", "other");
        }
        const XmlText::Element symbols(xml, "symbols");
        size_t symbol = 0;
        for (const auto& [code, item] : items) draw(xml, symbol++, &item);
        draw(xml, symbol, nullptr);
    };
    return Document({{"type", "categorizedSymbol"}, {"attr", field}}, false, fill, nothing);
}

// The colour of a point from the line type of its code, black without one.
std::string ColourExpression(const Symbology& symbology) {
    std::map<uint32_t, std::string> codes;
    for (const auto& [code, pen] : symbology.pens) {
        std::string& list = codes[pen.colour];
        list += (list.empty() ? "" : ",") + std::to_string(code);
    }
    std::string expression = "CASE";
    for (const auto& [colour, list] : codes)
        expression += " WHEN to_int(\"code\") IN (" + list + ") THEN '" + ColourText(colour) + "'";
    return expression + " ELSE '#000000' END";
}

// The symbol as a picture with its point in the middle.
std::string Picture(const PointSymbol& symbol) {
    const double reach = symbol.reach + symbolWidth;
    CPLString svg;
    svg.Printf(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.6g\" height=\"%.6g\" "
        "viewBox=\"%.6g %.6g %.6g %.6g\"><path fill=\"none\" stroke=\"param(outline) #000\" "
        "stroke-width=\"%.6g\" "
        "stroke-linecap=\"round\" stroke-linejoin=\"round\" d=\"",
        2 * reach, 2 * reach, -reach, -reach, 2 * reach, 2 * reach, symbolWidth);
    for (const auto& stroke : symbol.strokes) {
        for (size_t i = 0; i < stroke.size(); ++i)
            svg += CPLString().Printf("%c%.6g %.6g", i == 0 ? 'M' : 'L', stroke[i].x, -stroke[i].y);
    }
    svg += "\"/></svg>";
    char* coded = CPLBase64Encode(static_cast<int>(svg.size()), reinterpret_cast<const GByte*>(svg.data()));
    std::string picture = std::string("base64:") + coded;
    CPLFree(coded);
    return picture;
}

}  // namespace

std::string LinesQml(const Symbology& symbology, double mapScale) {
    const double ground = mapScale / 1000.0;
    return Categories("code", symbology.pens, [&](XmlText& xml, size_t number, const LinePen* pen) {
        LinePen plain;
        plain.width = plainWidth;
        AddSymbol(xml, "line", number, "SimpleLine", LineProperties(pen != nullptr ? *pen : plain, ground));
    });
}

std::string PointsQml(const Symbology& symbology, double mapScale) {
    const double ground = mapScale / 1000.0;
    const std::string colour = ColourExpression(symbology);
    return Categories(
        "symbol", symbology.symbols, [&](XmlText& xml, size_t number, const PointSymbol* symbol) {
            if (symbol == nullptr) {
                AddSymbol(xml, "marker", number, "SimpleMarker",
                          {{"name", "cross"}, {"size", Number(ground)}, {"size_unit", mapUnit}});
                return;
            }
            const std::string size = Number(2.0 * (symbol->reach + symbolWidth) * ground);
            const std::string scaled = size + " * \"scale\"";
            AddSymbol(xml, "marker", number, "SvgMarker",
                      {{"name", Picture(*symbol)},
                       {"size", size},
                       {"size_unit", mapUnit},
                       {"angle", "0"},
                       {"outline_color", "0,0,0,255"}},
                      {{"size", scaled.c_str()},
                       {"angle", "-0.9 * \"rotation\""},
                       {"outlineColor", colour.c_str()}});
        });
}

std::string TextsQml() {
    const auto labels = [](XmlText& xml) {
        const XmlText::Element labeling(xml, "labeling", {{"type", "simple"}});
        const XmlText::Element settings(xml, "settings");
        {
            const XmlText::Element style(xml, "text-style",
                                         {{"fieldName", "text"},
                                          {"fontFamily", "DejaVu Sans"},
                                          {"fontSize", "2"},
                                          {"fontSizeUnit", mapUnit},
                                          {"namedStyle", "Book"},
                                          {"textColor", "0,0,0,255"}});
        }
        // Placed by hand: over the point, turned around it, and shown whatever it covers.
        xml.Leaf("placement", {{"placement", "1"}, {"preserveRotation", "1"}});
        xml.Leaf("rendering", {{"displayAll", "1"}, {"obstacle", "0"}});
        AddDynamic(xml, "dd_properties",
                   {{"Size", "\"height\" / 0.729"},  // of the em; the height is that of a capital letter
                    {"PositionX", "$x"},
                    {"PositionY", "$y"},
                    {"LabelRotation", "-0.9 * \"rotation\""},
                    {"Hali",
                     "CASE WHEN \"d_value\" IN (1,4,7) THEN 'Left' WHEN \"d_value\" IN (3,6,9) THEN 'Right' "
                     "ELSE 'Center' END"},
                    {"Vali",
                     "CASE WHEN \"d_value\" IN (4,5,6) THEN 'Half' WHEN \"d_value\" IN (7,8,9) THEN 'Cap' "
                     "ELSE 'Base' END"},
                    {"Family", "if(\"f_value\" IN (5,6,7), 'DejaVu Serif', 'DejaVu Sans')"},
                    {"FontStyle",
                     "CASE WHEN \"f_value\" = 2 THEN 'Oblique' WHEN \"f_value\" IN (3,6) THEN 'Bold' "
                     "WHEN \"f_value\" = 4 THEN 'Bold Oblique' WHEN \"f_value\" = 7 THEN 'Bold Italic' "
                     "ELSE 'Book' END"},
                    {"AlwaysShow", "1"}});
    };
    return Document({{"type", "nullSymbol"}}, true, nothing, labels);
}

std::string ParcelsQml(double mapScale) {
    const auto fill = [&](XmlText& xml) {
        const XmlText::Element symbols(xml, "symbols");
        AddSymbol(xml, "fill", 0, "SimpleFill",
                  {{"style", "no"},
                   {"outline_color", "128,128,128,255"},
                   {"outline_width", Number(plainWidth * mapScale / 1000.0)},
                   {"outline_width_unit", mapUnit}});
    };
    return Document({{"type", "singleSymbol"}}, false, fill, nothing);
}

}  // namespace vemrado::gdal
