// Stands in for the PNG and PDF canvases in a build without cairo.

#include "canvas.h"

namespace vemrado::draw {

const char* WhyNoCairo() {
    return "PNG and PDF pictures need the cairo library, which this build lacks; .svg needs nothing";
}

std::unique_ptr<Canvas> MakePngCanvas(const PageSize&, double, ByteSink) {
    throw Unsupported(WhyNoCairo());
}

std::unique_ptr<Canvas> MakePdfCanvas(const PageSize&, const std::string&, ByteSink) {
    throw Unsupported(WhyNoCairo());
}

}  // namespace vemrado::draw
