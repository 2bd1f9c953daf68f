#include "qml_style.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <vector>

#include "map/placement.h"
#include "map/reading.h"
#include "qml_expressions.h"
#include "styles.h"
#include "xml_text.h"

namespace vemrado::gdal {

namespace {

constexpr double symbolWidth = map::Pen::defaultWidth;  // of the strokes of symbols
constexpr const char* mapUnit = "MapUnit";

struct Property {
    const char* name;
    std::string value;
};

// An expression that QGIS works out for each feature.
struct Dynamic {
    const char* name;
    std::string expression;
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

// Metres on the ground that a millimetre on paper stands for.
double GroundPerMillimetre(const MapLook& look) {
    return map::UsableScale(look.mapScale) / 1000.0;
}

// The lengths of a pen by the map scale of each feature.
std::vector<Dynamic> LineDynamics(const map::Pen& pen, const MapLook& look) {
    if (!look.scaleOfFeatures) return {};
    std::string dashes;
    for (const double length : pen.dashes)
        dashes += (dashes.empty() ? "" : " || ';' || ") + OnGround(Number(length));
    std::vector<Dynamic> expressions = {{"outlineWidth", OnGround(Number(pen.width))}};
    if (pen.dashes.empty()) return expressions;
    expressions.push_back({"customDash", dashes});
    expressions.push_back({"dashPatternOffset", OnGround(Number(pen.dashOffset))});
    return expressions;
}

std::vector<Property> LineProperties(const map::Pen& pen, double ground) {
    std::string dashes;
    for (const double length : pen.dashes) dashes += (dashes.empty() ? "" : ";") + Number(length * ground);
    return {{"line_color", ColourOf(pen.colour)},
            {"line_style", pen.invisible ? "no" : "solid"},
            {"line_width", Number(pen.width * ground)},
            {"line_width_unit", mapUnit},
            {"capstyle", "flat"},
            {"joinstyle", "round"},
            {"use_custom_dash", pen.dashes.empty() ? "0" : "1"},
            {"customdash", dashes.empty() ? "5;2" : dashes},
            {"customdash_unit", mapUnit},
            {"dash_pattern_offset", Number(pen.dashOffset * ground)},
            {"dash_pattern_offset_unit", mapUnit}};
}

// A category for each code of a field, with what the map from codes holds under its name.
template <typename Items>
size_t AddCategories(XmlText& xml, const Items& items) {
    size_t symbol = 0;
    for (const auto& [code, item] : items)
        AddCategory(xml, symbol++, std::to_string(code), LabelOf(code, item.name));
    return symbol;
}

// Layers of the file from the lowest up, and in each its elements as they stand in it.
void AddDrawingOrder(XmlText& xml) {
    const XmlText::Element order(xml, "orderby");
    for (const char* expression : {"\"layer\"", "$id"})
        xml.Leaf("orderByClause", {{"asc", "1"}, {"nullsFirst", "0"}}, expression);
}

// Half the side of a symbol's picture; the strokes' width stays when the picture is made smaller.
double PictureReach(const map::SymbolDrawing& drawing) {
    return drawing.reach + 5 * symbolWidth;
}

// The drawing as a picture with its point in the middle, whose strokes are as wide as the marker says.
std::string Picture(const map::SymbolDrawing& drawing, bool mirrored) {
    const double reach = PictureReach(drawing);
    CPLString svg;
    svg.Printf(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.6g\" height=\"%.6g\" "
        "viewBox=\"%.6g %.6g %.6g %.6g\"><path fill=\"none\" stroke=\"param(outline) #000\" "
        "stroke-width=\"param(outline-width) %.6g\" "
        "stroke-linecap=\"round\" stroke-linejoin=\"round\" d=\"",
        2 * reach, 2 * reach, -reach, -reach, 2 * reach, 2 * reach, symbolWidth);
    for (const auto& stroke : drawing.strokes) {
        for (size_t i = 0; i < stroke.size(); ++i) {
            const double down = mirrored ? stroke[i].y : -stroke[i].y;
            svg += CPLString().Printf("%c%.6g %.6g", i == 0 ? 'M' : 'L', stroke[i].x, down + 0.0);
        }
    }
    svg += "\"/></svg>";
    char* coded = CPLBase64Encode(static_cast<int>(svg.size()), reinterpret_cast<const GByte*>(svg.data()));
    std::string picture = std::string("base64:") + coded;
    CPLFree(coded);
    return picture;
}

}  // namespace

std::string LinesQml(const MapLook& look) {
    const double ground = GroundPerMillimetre(look);
    const auto& pens = look.symbology.pens;
    const auto fill = [&](XmlText& xml) {
        {
            const XmlText::Element categories(xml, "categories");
            AddCategory(xml, AddCategories(xml, pens), "", "other");
        }
        {
            const XmlText::Element symbols(xml, "symbols");
            size_t number = 0;
            for (const auto& [code, named] : pens)
                AddSymbol(xml, "line", number++, "SimpleLine", LineProperties(named.pen, ground),
                          LineDynamics(named.pen, look));
            AddSymbol(xml, "line", number, "SimpleLine", LineProperties({}, ground), LineDynamics({}, look));
        }
        AddDrawingOrder(xml);
    };
    return Document({{"type", "categorizedSymbol"}, {"attr", "code"}, {"enableorderby", "1"}}, false, fill,
                    nothing);
}

// What is no symbol of the symbology has no category and is not drawn.
std::string PointsQml(const MapLook& look) {
    const double ground = GroundPerMillimetre(look);
    const bool mirrored = map::TurnOf(look.axisOrientation).mirrored;
    const auto& symbols = look.symbology.symbols;
    const auto fill = [&](XmlText& xml) {
        {
            const XmlText::Element categories(xml, "categories");
            AddCategories(xml, symbols);
        }
        const XmlText::Element elements(xml, "symbols");
        size_t number = 0;
        for (const auto& [code, named] : symbols) {
            const std::string size = Number(2.0 * PictureReach(named.drawing));
            const std::string scaled = Number(2.0 * PictureReach(named.drawing) * ground);
            std::vector<Dynamic> expressions = {
                {"size", SymbolSize(look.scaleOfFeatures ? OnGround(size) : scaled)},
                {"angle", ClockwiseAngle(look.axisOrientation)},
                {"outlineColor", PenColour(look.symbology)}};
            if (look.scaleOfFeatures) expressions.push_back({"outlineWidth", OnGround(Number(symbolWidth))});
            AddSymbol(xml, "marker", number++, "SvgMarker",
                      {{"name", Picture(named.drawing, mirrored)},
                       {"size", scaled},
                       {"size_unit", mapUnit},
                       {"angle", "0"},
                       {"outline_color", "0,0,0,255"},
                       {"outline_width", Number(symbolWidth * ground)},
                       {"outline_width_unit", mapUnit}},
                      expressions);
        }
    };
    return Document({{"type", "categorizedSymbol"}, {"attr", "symbol"}}, false, fill, nothing);
}

std::string TextsQml(const MapLook& look) {
    const bool mirrored = map::TurnOf(look.axisOrientation).mirrored;
    const auto labels = [&](XmlText& xml) {
        const XmlText::Element labeling(xml, "labeling", {{"type", "simple"}});
        const XmlText::Element settings(xml, "settings");
        xml.Leaf("text-style", {{"fieldName", "text"},
                                {"fontFamily", map::FontFamily({})},
                                {"fontSize", "2"},
                                {"fontSizeUnit", mapUnit},
                                {"namedStyle", "Book"},
                                {"textColor", "0,0,0,255"}});
        // Placed by hand: over the point, turned around it, and shown whatever it covers.
        xml.Leaf("placement", {{"placement", "1"}, {"preserveRotation", "1"}});
        xml.Leaf("rendering", {{"displayAll", "1"}, {"obstacle", "0"}});
        AddDynamic(xml, "dd_properties",
                   {{"Size", "\"height\" / 0.729"},  // of the em; the height is that of a capital letter
                    {"Show", TextIsDrawable(look.scaleOfFeatures ? OnGround("1")
                                                                 : Number(GroundPerMillimetre(look)))},
                    {"PositionX", "$x"},
                    {"PositionY", "$y"},
                    {"LabelRotation", ClockwiseAngle(look.axisOrientation)},
                    {"Hali", TextAcross()},
                    {"Vali", TextUpright(mirrored)},
                    {"Family", TextFamily()},
                    {"FontStyle", TextStyleName()},
                    {"AlwaysShow", "1"}});
    };
    return Document({{"type", "nullSymbol"}}, true, nothing, labels);
}

std::string ParcelsQml(const MapLook& look) {
    const auto fill = [&](XmlText& xml) {
        const XmlText::Element symbols(xml, "symbols");
        AddSymbol(xml, "fill", 0, "SimpleFill",
                  {{"style", "no"},
                   {"outline_color", "128,128,128,255"},
                   {"outline_width", Number(map::Pen::plainWidth * GroundPerMillimetre(look))},
                   {"outline_width_unit", mapUnit}});
    };
    return Document({{"type", "singleSymbol"}}, false, fill, nothing);
}

}  // namespace vemrado::gdal
