#include "styles.h"

#include <charconv>
#include <cstdio>

namespace vemrado::gdal {

namespace {

// Digits enough for a drawing.
void Append(std::string& text, double number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 7).ptr;
    text.append(digits, end);
}

std::string PenStyle(const map::Pen& pen) {
    std::string style = "PEN(c:" + ColourText(pen.colour) + (pen.invisible ? "00,w:" : ",w:");
    Append(style, pen.width);
    style += "mm";
    for (size_t i = 0; i < pen.dashes.size(); ++i) {
        style += i == 0 ? ",p:\"" : " ";
        Append(style, pen.dashes[i]);
        style += "mm";
    }
    return style + (pen.dashes.empty() ? ")" : "\")");
}

}  // namespace

std::string ColourText(uint32_t colour) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF);
    return text;
}

Styles::Styles(const Symbology& symbology) : plain{PenStyle({}), ColourText(0)} {
    for (const auto& [code, named] : symbology.pens)
        pens.emplace(code, Pen{PenStyle(named.pen), ColourText(named.pen.colour)});
    for (const auto& [code, named] : symbology.symbols) symbolSizes.emplace(code, 2.0 * named.drawing.reach);
}

const Styles::Pen& Styles::PenOf(CodeNumber code) const {
    if (!code.given) return plain;
    const auto found = pens.find(code.number);
    return found != pens.end() ? found->second : plain;
}

void Styles::SetPen(OGRFeature& feature, const LineRecord& line) const {
    feature.SetStyleString(PenOf(line.code).style.c_str());
}

void Styles::SetSymbol(OGRFeature& feature, const Batch& batch, const PointRecord& point) const {
    const VertexValues& values = batch.values[point.vertex];
    const auto size = symbolSizes.find(values.symbol);
    if (size == symbolSizes.end() || !point.drawable) return;
    std::string style = "SYMBOL(id:\"vkm-" + std::to_string(values.symbol) + ",ogr-sym-2\",c:";
    style += PenOf(point.pen).colour + ",s:";
    Append(style, size->second * values.valueM);
    style += "mm,a:";
    Append(style, point.rotation);
    style += ')';
    feature.SetStyleString(style.c_str());
}

void Styles::SetLabel(OGRFeature& feature, const char* text, const TextRecord& record) const {
    if (!record.drawable) return;
    std::string style = std::string("LABEL(f:\"") + FontFamily(record.face) + "\",t:\"";
    for (; *text != '\0'; ++text) {
        if (*text == '"' || *text == '\\') style += '\\';
        style += *text;
    }
    style += "\",s:";
    Append(style, record.height);
    style += "g,a:";
    Append(style, record.rotation);
    style += ",p:" + std::to_string(record.anchor.Key()) + ",c:#000000";
    if (record.face.bold) style += ",bo:1";
    if (record.face.italic) style += ",it:1";
    style += ')';
    feature.SetStyleString(style.c_str());
}

}  // namespace vemrado::gdal
