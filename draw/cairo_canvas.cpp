// PNG and PDF pictures by the cairo library.

#include <cairo-pdf.h>
#include <cairo.h>

#include <cmath>
#include <exception>
#include <numbers>
#include <stdexcept>

#include "canvas.h"

namespace vemrado::draw {
namespace {

constexpr double pointsPerMillimetre = 72 / 25.4;
// Points; longer paths take the library more than their share of time.
constexpr size_t longestPath = 2000;
constexpr size_t longestPiece = 200;  // of one stroke

double Radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

struct CairoDelete {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};
using Surface = std::unique_ptr<cairo_surface_t, CairoDelete>;
using Context = std::unique_ptr<cairo_t, CairoDelete>;

void SelectFont(cairo_t* cairo, const Face& face) {
    cairo_select_font_face(cairo, FontFamily(face),
                           face.italic ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
                           face.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
}

// Letters keep their shape whatever their size and rotation.
void SetFontOptions(cairo_t* cairo) {
    const std::unique_ptr<cairo_font_options_t, CairoDelete> options(cairo_font_options_create());
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_set_font_options(cairo, options.get());
}

// Where the picture's bytes go. A failure of the sink must not pass through the drawing library: it is kept.
struct Output {
    ByteSink sink;
    std::exception_ptr failure;

    static cairo_status_t Write(void* output, const unsigned char* bytes, unsigned int count) {
        auto* self = static_cast<Output*>(output);
        try {
            if (!self->failure) self->sink({reinterpret_cast<const char*>(bytes), count});
        } catch (...) {
            self->failure = std::current_exception();
        }
        return self->failure ? CAIRO_STATUS_WRITE_ERROR : CAIRO_STATUS_SUCCESS;
    }
};

class CairoCanvas : public Canvas {
  public:
    CairoCanvas(ByteSink sink, double smallest) : output{std::move(sink), nullptr}, resolution(smallest) {}

    void BeginClip(const Box& box) override {
        StrokePath();
        cairo_save(cairo.get());
        cairo_rectangle(cairo.get(), box.minX, box.minY, box.Width(), box.Height());
        cairo_clip(cairo.get());
    }
    void EndClip() override {
        StrokePath();
        cairo_restore(cairo.get());
        faceSet = false;
    }

    void Line(std::span<const Point> points, const Pen& pen, double lengthBefore) override;
    void Symbol(const SymbolShape& shape, Point at, double scale, double rotation, const Pen& pen) override;
    void Text(const std::string& text, Point at, const TextStyle& style) override;
    void Fill(std::span<const Point> outline, uint32_t colour) override;
    double Resolution() const override { return resolution; }

  protected:
    void Start(cairo_surface_t* made, double unitsPerMillimetre);
    void SetUp(double unitsPerMillimetre);
    void StrokePath();
    // A white edge of letters that begin at this point, in the turned plane of the text.
    virtual void Halo(const std::string& text, Point start, const TextStyle& style);
    void CheckStatus(cairo_status_t status) const;

    Output output;
    double resolution;  // mm; 0: as fine as one likes
    Surface surface;
    Context cairo;

  private:
    void SetColour(uint32_t colour);
    void UsePen(const Pen& pen, double lengthBefore);
    void AddPoints(std::span<const Point> points, const Pen& pen, double lengthBefore);

    // What the current path will be stroked with.
    const Pen* pathPen = nullptr;
    double pathLengthBefore = 0;
    size_t pathPoints = 0;
    bool faceSet = false;
    Face lastFace;
};

void CairoCanvas::Start(cairo_surface_t* made, double unitsPerMillimetre) {
    surface.reset(made);
    CheckStatus(cairo_surface_status(surface.get()));
    cairo.reset(cairo_create(surface.get()));
    CheckStatus(cairo_status(cairo.get()));
    cairo_set_line_join(cairo.get(), CAIRO_LINE_JOIN_ROUND);
    SetFontOptions(cairo.get());
    SetUp(unitsPerMillimetre);
}

void CairoCanvas::SetUp(double unitsPerMillimetre) {
    cairo_identity_matrix(cairo.get());
    cairo_scale(cairo.get(), unitsPerMillimetre, unitsPerMillimetre);
    faceSet = false;
}

void CairoCanvas::CheckStatus(cairo_status_t status) const {
    if (output.failure) std::rethrow_exception(output.failure);
    if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
}

void CairoCanvas::SetColour(uint32_t colour) {
    const auto part = [&](int shift) { return static_cast<double>((colour >> shift) & 255) / 255; };
    cairo_set_source_rgb(cairo.get(), part(0), part(8), part(16));
}

void CairoCanvas::UsePen(const Pen& pen, double lengthBefore) {
    if (pathPen == &pen && pathLengthBefore == lengthBefore && pathPoints < longestPath) return;
    StrokePath();
    pathPen = &pen;
    pathLengthBefore = lengthBefore;
}

void CairoCanvas::StrokePath() {
    if (!pathPen) return;
    const Pen& pen = *pathPen;
    pathPen = nullptr;
    pathPoints = 0;
    SetColour(pen.colour);
    cairo_set_line_width(cairo.get(), std::max(pen.width, resolution * 0.6));
    double period = 0;
    for (const double length : pen.dashes) period += length;
    const bool dashed = !pen.dashes.empty() && period > 2 * resolution;
    cairo_set_line_cap(cairo.get(), dashed ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_ROUND);
    if (dashed) {
        cairo_set_dash(cairo.get(), pen.dashes.data(), static_cast<int>(pen.dashes.size()),
                       std::fmod(pen.dashOffset + pathLengthBefore, period));
    } else {
        cairo_set_dash(cairo.get(), nullptr, 0, 0);
    }
    cairo_stroke(cairo.get());
}

// A long stroke is drawn in pieces. They meet in the middle of a segment, where no end shows, and their
// dashes go on.
void CairoCanvas::AddPoints(std::span<const Point> points, const Pen& pen, double lengthBefore) {
    Point last = points.front();
    cairo_move_to(cairo.get(), last.x, last.y);
    const double nearby = resolution * 0.3;
    size_t inPiece = 0;
    double length = lengthBefore;
    for (size_t i = 1; i < points.size(); i++) {
        const Point point = points[i];
        const bool unseen = std::abs(point.x - last.x) < nearby && std::abs(point.y - last.y) < nearby;
        if (unseen && i + 1 < points.size()) continue;
        const double segment = pen.dashes.empty() ? 0 : std::hypot(point.x - last.x, point.y - last.y);
        if (++inPiece == longestPiece) {
            const Point middle{(last.x + point.x) / 2, (last.y + point.y) / 2};
            cairo_line_to(cairo.get(), middle.x, middle.y);
            StrokePath();
            UsePen(pen, length + segment / 2);
            cairo_move_to(cairo.get(), middle.x, middle.y);
            inPiece = 0;
        }
        cairo_line_to(cairo.get(), point.x, point.y);
        length += segment;
        last = point;
    }
    pathPoints += points.size();
}

void CairoCanvas::Line(std::span<const Point> points, const Pen& pen, double lengthBefore) {
    if (points.size() < 2 || pen.invisible) return;
    UsePen(pen, lengthBefore);
    AddPoints(points, pen, lengthBefore);
}

void CairoCanvas::Symbol(const SymbolShape& shape, Point at, double scale, double rotation, const Pen& pen) {
    // A symbol less than a pixel large would be a grey speck that takes as long to draw as a large one.
    if (std::max(shape.bounds.Width(), shape.bounds.Height()) * scale < resolution) return;
    UsePen(pen, 0);
    cairo_save(cairo.get());
    cairo_translate(cairo.get(), at.x, at.y);
    cairo_rotate(cairo.get(), -Radians(rotation));
    cairo_scale(cairo.get(), scale, -scale);
    for (const auto& stroke : shape.strokes) {
        cairo_move_to(cairo.get(), stroke[0].x, stroke[0].y);
        for (size_t i = 1; i < stroke.size(); i++) cairo_line_to(cairo.get(), stroke[i].x, stroke[i].y);
        pathPoints += stroke.size();
    }
    cairo_restore(cairo.get());
}

void CairoCanvas::Text(const std::string& text, Point at, const TextStyle& style) {
    if (style.height < 2 * resolution) return;
    StrokePath();
    if (!faceSet || !(lastFace == style.face)) SelectFont(cairo.get(), style.face);
    lastFace = style.face;
    faceSet = true;
    const double width = style.across == Across::left ? 0 : TextWidth(text, style.face, style.height);
    const double left = style.across == Across::middle ? -width / 2 : -width;
    const double down = style.upright == Upright::baseline ? 0
                        : style.upright == Upright::middle ? style.height / 2
                                                           : style.height;
    cairo_save(cairo.get());
    cairo_translate(cairo.get(), at.x, at.y);
    cairo_rotate(cairo.get(), -Radians(style.rotation));
    cairo_set_font_size(cairo.get(), style.height / capitalsPerEm);
    // In small letters a halo is grey and costs more than the letters.
    if (style.halo && style.height > 6 * resolution) {
        cairo_set_source_rgb(cairo.get(), 1, 1, 1);
        cairo_set_dash(cairo.get(), nullptr, 0, 0);
        Halo(text, {left, down}, style);
    }
    SetColour(style.colour);
    cairo_move_to(cairo.get(), left, down);
    cairo_show_text(cairo.get(), text.c_str());
    cairo_restore(cairo.get());
    cairo_new_path(cairo.get());
}

void CairoCanvas::Halo(const std::string& text, Point start, const TextStyle& style) {
    cairo_move_to(cairo.get(), start.x, start.y);
    cairo_text_path(cairo.get(), text.c_str());
    cairo_set_line_width(cairo.get(), 2 * haloWidth * style.height / capitalsPerEm);
    cairo_stroke(cairo.get());
}

void CairoCanvas::Fill(std::span<const Point> outline, uint32_t colour) {
    if (outline.empty()) return;
    StrokePath();
    SetColour(colour);
    cairo_move_to(cairo.get(), outline[0].x, outline[0].y);
    for (const Point point : outline.subspan(1)) cairo_line_to(cairo.get(), point.x, point.y);
    cairo_close_path(cairo.get());
    cairo_fill(cairo.get());
}

class PngCanvas : public CairoCanvas {
  public:
    PngCanvas(const PageSize& page, double dotsPerInch, ByteSink sink)
        : CairoCanvas(std::move(sink), 25.4 / dotsPerInch / page.zoom) {
        const PixelSize size = PixelsOf(page, dotsPerInch);
        Start(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width),
                                         static_cast<int>(size.height)),
              1 / resolution);
        cairo_set_source_rgb(cairo.get(), 1, 1, 1);
        cairo_paint(cairo.get());
    }
    void Finish() override {
        StrokePath();
        CheckStatus(cairo_status(cairo.get()));
        CheckStatus(cairo_surface_write_to_png_stream(surface.get(), Output::Write, &output));
    }
};

class PdfCanvas : public CairoCanvas {
  public:
    PdfCanvas(const PageSize& page, const std::string& title, ByteSink sink)
        : CairoCanvas(std::move(sink), 0) {
        Start(cairo_pdf_surface_create_for_stream(Output::Write, &output, Points(page.width * page.zoom),
                                                  Points(page.height * page.zoom)),
              Points(page.zoom));
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_TITLE, title.c_str());
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATOR, "vkm");
    }
    ~PdfCanvas() override {
        if (finished) return;
        output.sink = [](std::string_view) {};  // a page given up halfway writes nothing more
        // The library would still work on all that the page holds, which may take minutes.
        cairo_reset_clip(cairo.get());
        cairo_set_operator(cairo.get(), CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo.get());
    }

    void NewPage(const PageSize& page, double smallest) override {
        StrokePath();
        if (begun) cairo_show_page(cairo.get());
        begun = true;
        CheckStatus(cairo_status(cairo.get()));
        cairo_pdf_surface_set_size(surface.get(), Points(page.width * page.zoom),
                                   Points(page.height * page.zoom));
        SetUp(Points(page.zoom));
        resolution = smallest;
    }
    void Finish() override {
        StrokePath();
        CheckStatus(cairo_status(cairo.get()));
        finished = true;
        cairo_surface_finish(surface.get());
        CheckStatus(cairo_surface_status(surface.get()));
    }

  protected:
    // The outlines of letters would make a file four times as large; a band behind them does the same.
    void Halo(const std::string& text, Point start, const TextStyle& style) override {
        const double edge = haloWidth * style.height / capitalsPerEm;
        const double middle = start.y - style.height / 2;
        cairo_set_line_width(cairo.get(), style.height + 2 * edge);
        cairo_set_line_cap(cairo.get(), CAIRO_LINE_CAP_BUTT);
        cairo_move_to(cairo.get(), start.x - edge, middle);
        cairo_line_to(cairo.get(), start.x + TextWidth(text, style.face, style.height) + edge, middle);
        cairo_stroke(cairo.get());
    }

  private:
    static double Points(double millimetres) { return pointsPerMillimetre * millimetres; }

    bool begun = false;  // a page by NewPage
    bool finished = false;
};

}  // namespace

const char* WhyNoCairo() {
    return nullptr;
}

std::unique_ptr<Canvas> MakePngCanvas(const PageSize& page, double dotsPerInch, ByteSink sink) {
    return std::make_unique<PngCanvas>(page, dotsPerInch, std::move(sink));
}

std::unique_ptr<Canvas> MakePdfCanvas(const PageSize& page, const std::string& title, ByteSink sink) {
    return std::make_unique<PdfCanvas>(page, title, std::move(sink));
}

}  // namespace vemrado::draw
