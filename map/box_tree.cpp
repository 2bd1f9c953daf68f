#include "map/box_tree.h"

#include <algorithm>
#include <numeric>

namespace vemrado::map {
namespace {

// Place on the Hilbert curve through a square of 65536 cells a side.
uint32_t HilbertPlace(uint32_t x, uint32_t y) {
    uint32_t place = 0;
    for (uint32_t side = 1u << 15; side > 0; side >>= 1) {
        const uint32_t right = (x & side) != 0 ? 1 : 0;
        const uint32_t upper = (y & side) != 0 ? 1 : 0;
        place += side * side * ((3 * right) ^ upper);
        if (upper != 0) continue;
        if (right != 0) {
            x = ~x & 0xFFFF;
            y = ~y & 0xFFFF;
        }
        std::swap(x, y);
    }
    return place;
}

uint32_t Cell(double low, double high, double start, double length) {
    constexpr double cells = 65535.0;
    return length > 0 ? static_cast<uint32_t>(((low / 2 + high / 2) - start) / length * cells) : 0;
}

}  // namespace

BoxTree::BoxTree(std::span<const Box> boxes) {
    if (boxes.empty()) return;
    Box all;
    for (const Box& box : boxes) {
        all.Add(Point{box.minX, box.minY});
        all.Add(Point{box.maxX, box.maxY});
    }
    std::vector<uint32_t> places;
    places.reserve(boxes.size());
    for (const Box& box : boxes) {
        places.push_back(HilbertPlace(Cell(box.minX, box.maxX, all.minX, all.Width()),
                                      Cell(box.minY, box.maxY, all.minY, all.Height())));
    }
    numbers.resize(boxes.size());
    std::iota(numbers.begin(), numbers.end(), 0u);
    std::sort(numbers.begin(), numbers.end(),
              [&](uint32_t a, uint32_t b) { return places[a] != places[b] ? places[a] < places[b] : a < b; });
    std::vector<Box>& leaves = levels.emplace_back();
    leaves.reserve(boxes.size());
    for (const uint32_t number : numbers) leaves.push_back(boxes[number]);
    while (levels.back().size() > 1) {
        const std::vector<Box>& below = levels.back();
        std::vector<Box> nodes((below.size() + nodeSize - 1) / nodeSize);
        for (size_t i = 0; i < below.size(); ++i) {
            nodes[i / nodeSize].Add(Point{below[i].minX, below[i].minY});
            nodes[i / nodeSize].Add(Point{below[i].maxX, below[i].maxY});
        }
        levels.push_back(std::move(nodes));
    }
}

}  // namespace vemrado::map
