// What pictures are drawn on, in millimetres on paper with the origin at the top left and y down.

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "style.h"

namespace vemrado::draw {

// Takes the bytes of a picture in order; throws when they cannot be written.
using ByteSink = std::function<void(std::string_view)>;

struct PageSize {
    double width = 0;   // mm
    double height = 0;  // mm
    double zoom = 1;    // sizes of the finished picture to sizes on paper at the map's own scale
};

// The order of calls: DefinePen and DefineSymbol for everything that is drawn, then the drawing, then Finish.
class Canvas {
  public:
    virtual ~Canvas() = default;

    virtual void DefinePen(const Pen&) {}
    virtual void DefineSymbol(const SymbolShape&) {}

    // Begins a page, of which a PDF file may have many; things smaller than this, mm, are not worth drawing
    // on it. A picture of one page need not call it.
    virtual void NewPage(const PageSize&, double /*smallest*/) {}

    // A part of the picture under a name of its own: "layer-4", "legend". Groups nest.
    virtual void BeginGroup(const std::string& /*id*/, const std::string& /*label*/) {}
    virtual void EndGroup() {}

    // Until EndClip nothing is drawn outside the box. Clips do not nest.
    virtual void BeginClip(const Box& box) = 0;
    virtual void EndClip() = 0;

    // Draws with a pen that was defined; the dash pattern begins as far on as the length before the points.
    virtual void Line(std::span<const Point> points, const Pen& pen, double lengthBefore) = 0;
    virtual void Symbol(const SymbolShape& shape, Point at, double scale, double rotation,
                        const Pen& pen) = 0;
    virtual void Text(const std::string& text, Point at, const TextStyle& style) = 0;
    virtual void Fill(std::span<const Point> outline, uint32_t colour) = 0;

    // Smaller things cannot be seen in this picture, mm.
    virtual double Resolution() const { return 0; }

    // Completes the picture and hands the rest of its bytes to the sink. std::runtime_error when that fails.
    virtual void Finish() = 0;
};

// A picture that is larger than can be made. what() is its size and the limit.
class TooLarge : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A kind of picture that this build does not make. what() says what it lacks.
class Unsupported : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class Format : uint8_t { png, svg, pdf };

// By the ending of a file name, in either case; false when it is none of the three.
bool FormatOf(std::string_view fileName, Format& format);

// Width and height of a PNG picture.
struct PixelSize {
    double width;
    double height;
};
PixelSize PixelsOf(const PageSize& page, double dotsPerInch);

// Throws Unsupported when this build makes no pictures of that kind.
void CheckSupport(Format format);

// Throws TooLarge, or Unsupported, before anything is allocated.
std::unique_ptr<Canvas> MakeCanvas(Format format, const PageSize& page, double dotsPerInch,
                                   const std::string& title, ByteSink sink);

// Of what was linked beside the drawing. Null: PNG and PDF canvases can be made; otherwise why not.
const char* WhyNoCairo();
std::unique_ptr<Canvas> MakePngCanvas(const PageSize& page, double dotsPerInch, ByteSink sink);
std::unique_ptr<Canvas> MakePdfCanvas(const PageSize& page, const std::string& title, ByteSink sink);
std::unique_ptr<Canvas> MakeSvgCanvas(const PageSize& page, const std::string& title, ByteSink sink);

}  // namespace vemrado::draw
