#include "canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "client/text_encoding.h"

namespace vemrado::draw {
namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double largestPixelSide = 32767;                // what the drawing library's pictures hold
constexpr double largestPixelCount = 16384.0 * 16384.0;   // 1 GB of memory
[[maybe_unused]] constexpr double largestPdfSide = 5080;  // mm; 200 inches, a page's limit in PDF
constexpr double largestSvgSide = 1e6;                    // mm

[[noreturn]] void Refuse(const char* format, double width, double height, const char* limit) {
    char text[256];
    std::snprintf(text, sizeof text, format, width, height, limit);
    throw TooLarge(text);
}

// Beyond these sides the numbers of a drawing no longer have a scale between them.
void CheckScale(const PageSize& page) {
    constexpr double smallestSide = 1e-6, largestSide = 1e9;  // mm
    if (std::min(page.width, page.height) >= smallestSide && std::max(page.width, page.height) <= largestSide)
        return;
    Refuse("a picture of %.6g x %.6g mm is too large or too small: %s", page.width, page.height,
           "a side has from 1e-06 to 1e+09 mm before it is enlarged");
}

void CheckPixels(const PixelSize& size) {
    if (size.width <= largestPixelSide && size.height <= largestPixelSide &&
        size.width * size.height <= largestPixelCount) {
        return;
    }
    Refuse("a picture of %.6g x %.6g pixels is too large: %s", size.width, size.height,
           "a side holds at most 32767 and the whole at most 268435456");
}

void CheckMillimetres(const PageSize& page, double largest, const char* limit) {
    const double width = page.width * page.zoom;
    const double height = page.height * page.zoom;
    if (width <= largest && height <= largest) return;
    Refuse("a picture of %.6g x %.6g mm is too large: %s", width, height, limit);
}

}  // namespace

bool FormatOf(std::string_view fileName, Format& format) {
    const size_t dot = fileName.rfind('.');
    if (dot == std::string_view::npos) return false;
    const std::string ending = client::LowerAscii(fileName.substr(dot + 1));
    if (ending == "png") {
        format = Format::png;
    } else if (ending == "svg") {
        format = Format::svg;
    } else if (ending == "pdf") {
        format = Format::pdf;
    } else {
        return false;
    }
    return true;
}

PixelSize PixelsOf(const PageSize& page, double dotsPerInch) {
    const auto pixels = [&](double side) {
        return std::max(1.0, std::round(side * page.zoom * dotsPerInch / millimetresPerInch));
    };
    return {pixels(page.width), pixels(page.height)};
}

void CheckSupport(Format format) {
    if (format == Format::svg) return;
    if (const char* reason = WhyNoCairo()) throw Unsupported(reason);
}

std::unique_ptr<Canvas> MakeCanvas(Format format, const PageSize& page, double dotsPerInch,
                                   const std::string& title, ByteSink sink) {
    CheckSupport(format);
    if (format == Format::png) {
        CheckPixels(PixelsOf(page, dotsPerInch));
        CheckScale(page);
        return MakePngCanvas(page, dotsPerInch, std::move(sink));
    }
    if (format == Format::pdf) {
        CheckMillimetres(page, largestPdfSide, "a side of a PDF page holds at most 5080 mm");
        CheckScale(page);
        return MakePdfCanvas(page, title, std::move(sink));
    }
    CheckMillimetres(page, largestSvgSide, "a side holds at most 1000 m");
    return MakeSvgCanvas(page, title, std::move(sink));
}

}  // namespace vemrado::draw
