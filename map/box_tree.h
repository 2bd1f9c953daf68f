// Finds boxes by place: a tree over a fixed set of boxes, packed by the Hilbert curve.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "map/geometry.h"

namespace vemrado::map {

class BoxTree {
  public:
    BoxTree() = default;
    // Of boxes with finite sides. Takes n log n time and about 48 bytes a box.
    explicit BoxTree(std::span<const Box> boxes);

    // Calls visit(number of the box) for every box that meets the given one, in no particular order. A visit
    // that returns false ends the search.
    template <typename Visit>
    void Search(const Box& wanted, Visit visit) const {
        if (levels.empty()) return;
        // Level and number of nodes still to be looked at: at most a full node a level.
        struct Entry {
            uint32_t level;
            uint32_t node;
        };
        Entry open[maximumLevels * nodeSize];
        size_t count = 0;
        open[count++] = {static_cast<uint32_t>(levels.size() - 1), 0};
        while (count > 0) {
            const auto [level, node] = open[--count];
            if (!wanted.Meets(levels[level][node])) continue;
            if (level == 0) {
                if (!visit(numbers[node])) return;
                continue;
            }
            const size_t first = size_t{node} * nodeSize;
            const size_t end = std::min(first + nodeSize, levels[level - 1].size());
            for (size_t child = end; child-- > first;)
                open[count++] = {level - 1, static_cast<uint32_t>(child)};
        }
    }

  private:
    static constexpr size_t nodeSize = 16;
    static constexpr size_t maximumLevels = 9;  // 16^8 boxes and their root

    std::vector<std::vector<Box>> levels;  // the boxes, then their nodes up to a single root
    std::vector<uint32_t> numbers;         // of the boxes in the first level
};

}  // namespace vemrado::map
