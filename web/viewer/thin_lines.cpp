#include "thin_lines.h"

#include <cmath>
#include <utility>

namespace vemrado::web {
namespace {

constexpr double thickness = 0.6;  // pixels, as lines are drawn that have no more

}  // namespace

Pixels::Pixels(int pixelWidth, int pixelHeight)
    : width(pixelWidth),
      height(pixelHeight),
      values(static_cast<size_t>(pixelWidth) * static_cast<size_t>(pixelHeight), 0xFFFFFFFF) {}

void Pixels::Blend(int x, int y, uint32_t colour, double cover) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    uint32_t& pixel = values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    const auto share = static_cast<uint32_t>(cover * 256);
    const uint32_t rest = 256 - share;
    const uint32_t redBlue = ((pixel & 0xFF00FF) * rest + (colour & 0xFF00FF) * share) >> 8 & 0xFF00FF;
    const uint32_t green = ((pixel & 0xFF00) * rest + (colour & 0xFF00) * share) >> 8 & 0xFF00;
    pixel = 0xFF000000 | redBlue | green;
}

template <bool steep>
void Pixels::FlatLine(draw::Point from, draw::Point to, uint32_t colour) {
    if (from.x > to.x) std::swap(from, to);
    const double length = to.x - from.x;
    const double slope = length > 0 ? (to.y - from.y) / length : 0;
    const double half = thickness / 2 * std::sqrt(1 + slope * slope);
    const double last = steep ? height : width;
    const double begin = std::max(from.x - (length > 0 ? 0 : half), 0.0);
    const double end = std::min(to.x + (length > 0 ? 0 : half), last);
    for (double column = std::floor(begin); column < end; ++column) {
        const double along = std::min(end, column + 1) - std::max(begin, column);
        const double middle = from.y + (column + 0.5 - from.x) * slope;
        const double low = middle - half;
        const double row = std::floor(low);
        if (!(row >= -1 && row < (steep ? width : height))) continue;
        const double first = std::min(low + 2 * half, row + 1) - low;
        const double second = 2 * half - first;
        const auto x = static_cast<int>(column);
        const auto y = static_cast<int>(row);
        steep ? Blend(y, x, colour, first * along) : Blend(x, y, colour, first * along);
        if (second > 0)
            steep ? Blend(y + 1, x, colour, second * along) : Blend(x, y + 1, colour, second * along);
    }
}

void Pixels::Line(draw::Point from, draw::Point to, uint32_t colour) {
    constexpr double margin = 2;
    if (std::max(from.x, to.x) < -margin || std::min(from.x, to.x) > width + margin) return;
    if (std::max(from.y, to.y) < -margin || std::min(from.y, to.y) > height + margin) return;
    if (std::abs(to.x - from.x) >= std::abs(to.y - from.y)) {
        FlatLine<false>(from, to, colour);
    } else {
        FlatLine<true>({from.y, from.x}, {to.y, to.x}, colour);
    }
}

}  // namespace vemrado::web
