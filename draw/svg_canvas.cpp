// SVG pictures that people can go on working with: a group for each layer, a class for each line type,
// symbols by reference, texts as texts.

#include <charconv>
#include <cmath>
#include <cstdio>

#include "canvas.h"

namespace vemrado::draw {
namespace {

constexpr size_t chunk = 1 << 16;  // bytes that go to the sink together

class SvgCanvas : public Canvas {
  public:
    SvgCanvas(const PageSize& page, const std::string& title, ByteSink output);

    void DefinePen(const Pen& pen) override;
    void DefineSymbol(const SymbolShape& shape) override;
    void BeginGroup(const std::string& id, const std::string& label) override;
    void EndGroup() override { Put("</g>\n"); }
    void BeginClip(const Box& box) override;
    void EndClip() override { Put("</g>\n"); }
    void Line(std::span<const Point> points, const Pen& pen, double lengthBefore) override;
    void Symbol(const SymbolShape& shape, Point at, double scale, double rotation, const Pen& pen) override;
    void Text(const std::string& text, Point at, const TextStyle& style) override;
    void Fill(std::span<const Point> outline, uint32_t colour) override;
    void Finish() override;

  private:
    void Put(std::string_view text);
    void PutNumber(double value);
    void PutEscaped(std::string_view text);
    void PutColour(uint32_t colour);
    void PutPath(std::span<const Point> points, double ySign);
    // Closes the definitions; everything drawn stands after them.
    void BeginDrawing();
    void Flush();

    ByteSink sink;
    std::string buffer;
    std::string styles;   // rules of the pens
    std::string symbols;  // <symbol>-like definitions
    bool drawing = false;
    int clips = 0;
};

SvgCanvas::SvgCanvas(const PageSize& page, const std::string& title, ByteSink output)
    : sink(std::move(output)) {
    Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" ");
    Put("xmlns:xlink=\"http://www.w3.org/1999/xlink\" version=\"1.1\" width=\"");
    PutNumber(page.width * page.zoom);
    Put("mm\" height=\"");
    PutNumber(page.height * page.zoom);
    Put("mm\" viewBox=\"0 0 ");
    PutNumber(page.width);
    Put(" ");
    PutNumber(page.height);
    Put("\">\n<title>");
    PutEscaped(title);
    Put("</title>\n");
}

void SvgCanvas::Flush() {
    sink(buffer);
    buffer.clear();
}

void SvgCanvas::Put(std::string_view text) {
    buffer += text;
    if (drawing && buffer.size() >= chunk) Flush();
}

// A thousandth of a millimetre is finer than any printer.
void SvgCanvas::PutNumber(double value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr;
    std::string_view digits(text, static_cast<size_t>(end - text));
    while (digits.back() == '0') digits.remove_suffix(1);
    if (digits.back() == '.') digits.remove_suffix(1);
    Put(digits == "-0" ? "0" : digits);
}

void SvgCanvas::PutEscaped(std::string_view text) {
    for (const char c : text) {
        switch (c) {
            case '&':
                Put("&amp;");
                break;
            case '<':
                Put("&lt;");
                break;
            case '>':
                Put("&gt;");
                break;
            case '"':
                Put("&quot;");
                break;
            default:
                Put({&c, 1});
        }
    }
}

void SvgCanvas::PutColour(uint32_t colour) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour & 255, (colour >> 8) & 255,
                  (colour >> 16) & 255);
    Put(text);
}

void SvgCanvas::DefinePen(const Pen& pen) {
    buffer.swap(styles);
    Put(".");
    Put(pen.id);
    Put(" { stroke: ");
    PutColour(pen.colour);
    Put("; stroke-width: ");
    PutNumber(pen.width);
    if (pen.invisible) Put("; visibility: hidden");
    if (!pen.dashes.empty()) {
        Put("; stroke-linecap: butt; stroke-dasharray:");
        for (size_t i = 0; i < pen.dashes.size(); i++) {
            Put(i ? ", " : " ");
            PutNumber(pen.dashes[i]);
        }
        if (pen.dashOffset != 0) {
            Put("; stroke-dashoffset: ");
            PutNumber(pen.dashOffset);
        }
    }
    Put(" }\n");
    buffer.swap(styles);
}

void SvgCanvas::DefineSymbol(const SymbolShape& shape) {
    buffer.swap(symbols);
    Put("<path id=\"");
    Put(shape.id);
    Put("\" d=\"");
    for (const auto& stroke : shape.strokes) PutPath(stroke, -1);
    Put("\"/>\n");
    buffer.swap(symbols);
}

void SvgCanvas::BeginDrawing() {
    if (drawing) return;
    Put("<style>\npath, use { fill: none; stroke-linejoin: round; stroke-linecap: round }\n");
    Put("text { font-family: 'DejaVu Sans', sans-serif; white-space: pre }\n");
    Put(".serif { font-family: 'DejaVu Serif', serif }\n");
    Put(".halo { stroke: #ffffff; stroke-width: 0.24em; stroke-linejoin: round; paint-order: stroke }\n");
    Put(styles);
    Put("</style>\n<defs>\n");
    Put(symbols);
    Put("</defs>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n");
    drawing = true;
}

void SvgCanvas::BeginGroup(const std::string& id, const std::string& label) {
    BeginDrawing();
    Put("<g id=\"");
    PutEscaped(id);
    Put("\">\n");
    if (label.empty()) return;
    Put("<title>");
    PutEscaped(label);
    Put("</title>\n");
}

void SvgCanvas::BeginClip(const Box& box) {
    BeginDrawing();
    const std::string id = "clip-" + std::to_string(++clips);
    Put("<clipPath id=\"" + id + "\"><path d=\"");
    const Point corners[] = {
        {box.minX, box.minY}, {box.maxX, box.minY}, {box.maxX, box.maxY}, {box.minX, box.maxY}};
    PutPath(corners, 1);
    Put("Z\"/></clipPath>\n<g clip-path=\"url(#" + id + ")\">\n");
}

void SvgCanvas::PutPath(std::span<const Point> points, double ySign) {
    char command = 'M';
    for (const Point point : points) {
        Put({&command, 1});
        PutNumber(point.x);
        Put(" ");
        PutNumber(ySign * point.y);
        command = 'L';
    }
}

void SvgCanvas::Line(std::span<const Point> points, const Pen& pen, double lengthBefore) {
    if (points.size() < 2) return;
    BeginDrawing();
    Put("<path class=\"");
    Put(pen.id);
    if (lengthBefore != 0 && !pen.dashes.empty()) {
        Put("\" style=\"stroke-dashoffset: ");
        PutNumber(pen.dashOffset + lengthBefore);
    }
    Put("\" d=\"");
    PutPath(points, 1);
    Put("\"/>\n");
}

void SvgCanvas::Symbol(const SymbolShape& shape, Point at, double scale, double rotation, const Pen& pen) {
    BeginDrawing();
    Put("<use class=\"");
    Put(pen.id);
    Put("\" xlink:href=\"#");
    Put(shape.id);
    Put("\" transform=\"translate(");
    PutNumber(at.x);
    Put(" ");
    PutNumber(at.y);
    Put(")");
    if (rotation != 0) {
        Put(" rotate(");
        PutNumber(-rotation);
        Put(")");
    }
    if (scale != 1) {
        // The pen keeps its width: the scale applies to it as well.
        Put(" scale(");
        PutNumber(scale);
        Put(")\" style=\"stroke-width: ");
        PutNumber(pen.width / scale);
    }
    Put("\"/>\n");
}

void SvgCanvas::Text(const std::string& text, Point at, const TextStyle& style) {
    BeginDrawing();
    Put("<text");
    if (style.face.serif || style.halo) {
        Put(" class=\"");
        Put(style.halo && style.face.serif ? "serif halo" : style.halo ? "halo" : "serif");
        Put("\"");
    }
    if (style.face.bold) Put(" font-weight=\"bold\"");
    if (style.face.italic) Put(" font-style=\"italic\"");
    if (style.across != Across::left) {
        Put(style.across == Across::middle ? " text-anchor=\"middle\"" : " text-anchor=\"end\"");
    }
    if (style.colour != 0) {
        Put(" fill=\"");
        PutColour(style.colour);
        Put("\"");
    }
    Put(" font-size=\"");
    PutNumber(style.height / capitalsPerEm);
    Put("\" transform=\"translate(");
    PutNumber(at.x);
    Put(" ");
    PutNumber(at.y);
    Put(")");
    if (style.rotation != 0) {
        Put(" rotate(");
        PutNumber(-style.rotation);
        Put(")");
    }
    Put("\"");
    if (style.upright != Upright::baseline) {
        Put(" y=\"");
        PutNumber(style.upright == Upright::middle ? style.height / 2 : style.height);
        Put("\"");
    }
    Put(">");
    PutEscaped(text);
    Put("</text>\n");
}

void SvgCanvas::Fill(std::span<const Point> outline, uint32_t colour) {
    BeginDrawing();
    Put("<path style=\"fill: ");
    PutColour(colour);
    Put("\" d=\"");
    PutPath(outline, 1);
    Put("Z\"/>\n");
}

void SvgCanvas::Finish() {
    BeginDrawing();
    Put("</svg>\n");
    Flush();
}

}  // namespace

std::unique_ptr<Canvas> MakeSvgCanvas(const PageSize& page, const std::string& title, ByteSink sink) {
    return std::make_unique<SvgCanvas>(page, title, std::move(sink));
}

}  // namespace vemrado::draw
