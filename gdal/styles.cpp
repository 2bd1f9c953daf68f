#include "styles.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace vemrado::gdal {

namespace {

constexpr const char* plainStyle = "PEN(c:#000000,w:0.13mm)";

// Digits enough for a drawing.
void Append(std::string& text, double number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 7).ptr;
    text.append(digits, end);
}

std::string PenStyle(const LinePen& pen) {
    std::string style = "PEN(c:" + ColourText(pen.colour) + (pen.visible ? ",w:" : "00,w:");
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

TextFace FaceOf(int valueF) {
    constexpr TextFace faces[] = {{false, false, false}, {false, false, true}, {false, true, false},
                                  {false, true, true},   {true, false, false}, {true, true, false},
                                  {true, true, true}};
    constexpr int count = static_cast<int>(std::size(faces));
    return faces[valueF >= 1 && valueF <= count ? valueF - 1 : 0];
}

Styles::Styles(const Symbology& symbology) : plain{plainStyle, "#000000"} {
    for (const auto& [code, pen] : symbology.pens)
        pens.emplace(code, Pen{PenStyle(pen), ColourText(pen.colour)});
    for (const auto& [code, symbol] : symbology.symbols) symbolSizes.emplace(code, 2.0 * symbol.reach);
}

const Styles::Pen& Styles::PenOf(const char* code) const {
    if (code[0] == '\0') return plain;
    const auto found = pens.find(std::atoi(code));
    return found != pens.end() ? found->second : plain;
}

void Styles::SetPen(OGRFeature& feature, const Batch& batch, const LineRecord& line) const {
    uint32_t code = 0;
    for (size_t i = line.first; i < line.first + line.count && code == 0; ++i) code = batch.values[i].code;
    feature.SetStyleString(PenOf(batch.String(code)).style.c_str());
}

void Styles::SetSymbol(OGRFeature& feature, const Batch& batch, const PointRecord& point) const {
    const VertexValues& values = batch.values[point.vertex];
    const auto size = symbolSizes.find(values.symbol);
    if (size == symbolSizes.end()) return;
    std::string style = "SYMBOL(id:\"vkm-" + std::to_string(values.symbol) + ",ogr-sym-2\",c:";
    style += PenOf(batch.String(point.code)).colour + ",s:";
    Append(style, size->second * values.valueM);
    style += "mm,a:";
    Append(style, Degrees(values.valueU));
    style += ')';
    feature.SetStyleString(style.c_str());
}

void Styles::SetLabel(OGRFeature& feature, const char* text, const TextRecord& record) const {
    const TextFace face = FaceOf(record.valueF);
    std::string style = face.serif ? "LABEL(f:\"DejaVu Serif\",t:\"" : "LABEL(f:\"DejaVu Sans\",t:\"";
    for (; *text != '\0'; ++text) {
        if (*text == '"' || *text == '\\') style += '\\';
        style += *text;
    }
    style += "\",s:";
    Append(style, record.height);
    style += "g,a:";
    Append(style, Degrees(record.rotation));
    style += ",p:" + std::to_string(TextAnchor(record.valueD)) + ",c:#000000";
    if (face.bold) style += ",bo:1";
    if (face.italic) style += ",it:1";
    style += ')';
    feature.SetStyleString(style.c_str());
}

}  // namespace vemrado::gdal
