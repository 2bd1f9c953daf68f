// What the library vkm-draw.so, which is loaded at run time, hands out. Both sides come from one build.

#pragma once

#include "canvas.h"

namespace vemrado::draw {

using NewPngCanvas = Canvas*(const PageSize& page, double dotsPerInch, ByteSink sink);
using NewPdfCanvas = Canvas*(const PageSize& page, const std::string& title, ByteSink sink);

inline constexpr const char* cairoModuleName = "vkm-draw.so";
inline constexpr const char* newPngCanvasName = "vemrado_new_png_canvas";
inline constexpr const char* newPdfCanvasName = "vemrado_new_pdf_canvas";

}  // namespace vemrado::draw
