#include "draw/canvas.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <array>

namespace vemrado::draw {
namespace {

constexpr double perMillimetre = 254;  // dots per inch that make ten pixels a millimetre
const PageSize page{20, 10, 1};

// An arrow head that points up, with its tip at the insertion point.
SymbolShape ArrowHead() {
    SymbolShape shape;
    shape.id = "arrow";
    shape.strokes = {{{-2, -3}, {0, 0}, {2, -3}}};
    for (const Point point : shape.strokes[0]) shape.bounds.Add(point);
    return shape;
}

Pen DashedPen() {
    Pen pen;
    pen.id = "line-5";
    pen.colour = 0x0000FF;  // red
    pen.width = 0.4;
    pen.dashes = {2, 2};
    return pen;
}

std::string Drawn(Format format, const std::function<void(Canvas&)>& draw, const PageSize& size = page) {
    std::string bytes;
    const auto canvas =
        MakeCanvas(format, size, perMillimetre, "A <test>", [&](std::string_view part) { bytes += part; });
    draw(*canvas);
    canvas->Finish();
    return bytes;
}

// Reads a PNG picture and looks at its pixels by places in millimetres.
class Picture {
  public:
    explicit Picture(const std::string& png) : rest(png) {
        surface = cairo_image_surface_create_from_png_stream(Read, this);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    ~Picture() { cairo_surface_destroy(surface); }

    uint32_t At(double x, double y) const {
        const auto column = static_cast<size_t>(x * 10);
        const auto row = static_cast<size_t>(y * 10);
        const unsigned char* data = cairo_image_surface_get_data(surface);
        const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
        const auto* pixels = reinterpret_cast<const uint32_t*>(data + row * stride);
        return pixels[column] & 0xFFFFFF;
    }
    bool HasInk(const Box& box) const {
        for (double y = box.minY; y < box.maxY; y += 0.1) {
            for (double x = box.minX; x < box.maxX; x += 0.1) {
                if (At(x, y) != 0xFFFFFF) return true;
            }
        }
        return false;
    }
    int Width() const { return cairo_image_surface_get_width(surface); }

  private:
    static cairo_status_t Read(void* self, unsigned char* bytes, unsigned int count) {
        std::string_view& rest = static_cast<Picture*>(self)->rest;
        if (rest.copy(reinterpret_cast<char*>(bytes), count) < count) return CAIRO_STATUS_READ_ERROR;
        rest.remove_prefix(count);
        return CAIRO_STATUS_SUCCESS;
    }

    std::string_view rest;
    cairo_surface_t* surface;
};

void DrawDashedLine(Canvas& canvas, const Pen& pen, double lengthBefore) {
    canvas.DefinePen(pen);
    const std::array<Point, 3> line{Point{2, 5}, Point{9, 5}, Point{18, 5}};
    canvas.Line(line, pen, lengthBefore);
}

TEST(PngCanvas, DashesRunOnThroughTheStroke) {
    const Pen pen = DashedPen();
    const std::string png = Drawn(Format::png, [&](Canvas& canvas) { DrawDashedLine(canvas, pen, 0); });
    const Picture picture(png);
    EXPECT_EQ(picture.Width(), 200);
    for (const double x : {3.0, 7.0, 11.0, 15.0}) {
        EXPECT_EQ(picture.At(x, 5), 0xFF0000U) << x;  // drawn stretches, red
        EXPECT_EQ(picture.At(x + 2, 5), 0xFFFFFFU) << x;
    }
    // However many points the stroke has.
    std::vector<Point> fine;
    for (double x = 2; x < 18; x += 0.035) fine.push_back({x, 5});
    fine.push_back({18, 5});
    const std::string pieces = Drawn(Format::png, [&](Canvas& canvas) { canvas.Line(fine, pen, 0); });
    for (double x = 2.5; x < 17; x += 1) EXPECT_EQ(Picture(pieces).At(x, 5), picture.At(x, 5)) << x;
    const std::string shifted = Drawn(Format::png, [&](Canvas& canvas) { DrawDashedLine(canvas, pen, 6); });
    EXPECT_EQ(Picture(shifted).At(3, 5), 0xFFFFFFU);
    EXPECT_EQ(Picture(shifted).At(5, 5), 0xFF0000U);
}

TEST(PngCanvas, PlacesSymbolsUprightAndTurnsThemCounterClockwise) {
    const struct {
        double rotation;
        Box ink;  // where the arrow's tail is
    } cases[] = {
        {0, {8, 7, 12, 8}},    // points up
        {90, {12, 3, 13, 7}},  // points left
        {180, {8, 2, 12, 3}},
        {-90, {7, 3, 8, 7}},
    };
    for (const auto& test : cases) {
        const Pen pen;
        const std::string png = Drawn(Format::png, [&](Canvas& canvas) {
            canvas.Symbol(ArrowHead(), {10, 5}, 1, test.rotation, pen);
        });
        for (const auto& other : cases) {
            EXPECT_EQ(Picture(png).HasInk(other.ink), &other == &test)
                << test.rotation << " " << other.rotation;
        }
    }
}

// Which of the boxes around the insertion point a text fills.
TEST(PngCanvas, SetsTextsAtTheirAnchorsAndReadable) {
    const Box right{10.5, 1, 20, 9};
    const Box left{0, 1, 9.5, 9};
    const Box above{5, 0, 15, 4.5};
    const Box below{5, 5.5, 15, 10};
    const struct {
        TextStyle style;
        Box ink;
        Box white;
    } cases[] = {
        {{{}, 3, 0, Across::left, Upright::middle, 0}, right, left},
        {{{}, 3, 0, Across::right, Upright::middle, 0}, left, right},
        {{{}, 3, 0, Across::middle, Upright::baseline, 0}, above, below},
        {{{}, 3, 0, Across::middle, Upright::top, 0}, below, above},
        {{{}, 3, 90, Across::left, Upright::middle, 0}, above, below},  // reads upwards
    };
    for (const auto& test : cases) {
        const std::string png = Drawn(Format::png, [&](Canvas& canvas) {
            canvas.Text("LF", {10, 5}, test.style);
        });
        EXPECT_TRUE(Picture(png).HasInk(test.ink)) << test.style.rotation;
        EXPECT_FALSE(Picture(png).HasInk(test.white)) << test.style.rotation;
    }
    // An L has its foot to the right.
    const TextStyle style{{}, 6, 0, Across::left, Upright::middle, 0};
    const std::string png = Drawn(Format::png, [&](Canvas& canvas) { canvas.Text("L", {5, 5}, style); });
    EXPECT_TRUE(Picture(png).HasInk({8, 7, 9, 8}));
    EXPECT_FALSE(Picture(png).HasInk({8, 2, 9, 5}));
}

TEST(SvgCanvas, WritesElementsThatPeopleCanRestyle) {
    const Pen pen = DashedPen();
    const TextStyle style{{true, true, false}, 1.458, 45, Across::middle, Upright::middle, 0};
    const std::string svg = Drawn(Format::svg, [&](Canvas& canvas) {
        canvas.DefineSymbol(ArrowHead());
        canvas.DefinePen(pen);
        canvas.BeginGroup("layer-4", "4");
        canvas.BeginClip({0, 0, 20, 10});
        DrawDashedLine(canvas, pen, 1);
        canvas.EndClip();
        canvas.Symbol(ArrowHead(), {10, 5}, 2, 90, pen);
        canvas.Text("Žďár <&> \"5\"", {1, 2}, style);
        canvas.EndGroup();
    });
    for (const char* part : {
             R"~(width="20mm" height="10mm" viewBox="0 0 20 10")~",
             "<title>A &lt;test&gt;</title>",
             ".line-5 { stroke: #ff0000; stroke-width: 0.4; stroke-linecap: butt; stroke-dasharray: 2, 2 }",
             R"~(<path id="arrow" d="M-2 3L0 0L2 3"/>)~",
             R"~(<g id="layer-4">)~",
             R"~(<path class="line-5" style="stroke-dashoffset: 1" d="M2 5L9 5L18 5"/>)~",
             R"~(<use class="line-5" xlink:href="#arrow" transform="translate(10 5) rotate(-90) scale(2)")~",
             R"~( scale(2)" style="stroke-width: 0.2"/>)~",
             R"~(font-weight="bold" text-anchor="middle" font-size="2")~",
             R"~( transform="translate(1 2) rotate(-45)" y="0.729">Žďár &lt;&amp;&gt; &quot;5&quot;</text>)~",
         }) {
        EXPECT_NE(svg.find(part), std::string::npos) << part << "\n" << svg;
    }
}

TEST(Canvas, RefusesWhatIsTooLarge) {
    const struct {
        Format format;
        PageSize size;
        const char* says;
    } cases[] = {
        {Format::png, {4000, 1, 1}, "40000 x 10 pixels"},
        {Format::png, {3000, 3000, 1}, "30000 x 30000 pixels"},
        {Format::png, {1e300, 1e300, 1}, "1e+301 x 1e+301 pixels"},
        {Format::png, {1e300, 1e300, 1e-300}, "1e+300 x 1e+300 mm"},
        {Format::pdf, {6000, 100, 1}, "6000 x 100 mm"},
        {Format::pdf, {1e-300, 1e-300, 1e300}, "1e-300 x 1e-300 mm"},
        {Format::svg, {100, 2e5, 10}, "1000 x 2e+06 mm"},
    };
    for (const auto& test : cases) {
        try {
            MakeCanvas(test.format, test.size, perMillimetre, "", [](std::string_view) {});
            ADD_FAILURE() << test.says;
        } catch (const TooLarge& error) {
            EXPECT_EQ(
                std::string(error.what()).find("a picture of " + std::string(test.says) + " is too large"),
                0U)
                << error.what();
        }
    }
}

TEST(Canvas, PassesTheSinksFailureOn) {
    for (const Format format : {Format::png, Format::svg, Format::pdf}) {
        const auto fail = [](std::string_view) { throw std::out_of_range("disk full"); };
        EXPECT_THROW(
            {
                const auto canvas = MakeCanvas(format, page, perMillimetre, "", fail);
                canvas->Text("x", {1, 1}, {});
                canvas->Finish();
            },
            std::out_of_range);
    }
}

TEST(Format, ComesFromTheEndingOfTheName) {
    Format format = Format::png;
    EXPECT_TRUE(FormatOf("a.b/map.SVG", format) && format == Format::svg);
    EXPECT_TRUE(FormatOf("map.pdf", format) && format == Format::pdf);
    for (const char* name : {"map", "map.gif", "png", "map.png.", ""})
        EXPECT_FALSE(FormatOf(name, format)) << name;
}

}  // namespace
}  // namespace vemrado::draw
