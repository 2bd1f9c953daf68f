// The library vkm-draw.so: PNG and PDF canvases for whoever loads it.

#include "cairo_module.h"

using namespace vemrado::draw;

// Null when there is no memory; std::runtime_error for a page that cairo cannot make.
extern "C" __attribute__((visibility("default"))) Canvas* vemrado_new_png_canvas(const PageSize& page,
                                                                                 double dotsPerInch,
                                                                                 ByteSink sink) {
    return MakePngCanvas(page, dotsPerInch, std::move(sink)).release();
}

extern "C" __attribute__((visibility("default"))) Canvas* vemrado_new_pdf_canvas(const PageSize& page,
                                                                                 const std::string& title,
                                                                                 ByteSink sink) {
    return MakePdfCanvas(page, title, std::move(sink)).release();
}
