// What is in a file: counts by layer and kind, and the extents.

#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "map/importer.h"

namespace vemrado::tools {

// Type letters in the order in which they are counted and shown; then any other letter, then none.
inline constexpr std::array<char, 5> typeLetters = {'C', 'K', 'L', 'P', 'R'};
inline constexpr size_t otherTypeLetter = typeLetters.size();
inline constexpr size_t noTypeLetter = typeLetters.size() + 1;

using CodeCounts = std::vector<std::pair<std::string, uint64_t>>;

struct LayerCounts {
    uint64_t lines = 0;
    uint64_t elements = 0;                                 // of lines
    std::array<uint64_t, typeLetters.size() + 2> types{};  // elements by type letter
    uint64_t texts = 0;
    uint64_t symbols = 0;  // elements with a symbol code
    std::unordered_map<std::string, uint64_t>
        elementCodes;                     // elements by K value, without those that have none
    std::map<int, uint64_t> symbolCodes;  // elements by S value
    std::map<int, uint64_t> textCodes;    // texts by K value, without those that have none

    // The codes of elements, numbers in their numeric order.
    CodeCounts SortedElementCodes() const;
};

// A bounding box as the module's GetExtents finds it, of one coordinate.
struct Range {
    double minimum = 1.797693e308;
    double maximum = -1.797693e308;

    void Add(double value) {
        if (minimum > value) minimum = value;
        if (value > maximum) maximum = value;
    }
    bool Found() const { return minimum <= maximum; }
};

class FileSummary {
  public:
    void AddLine(const map::RawLine& line);
    void AddText(const map::RawText& text);

    // The layers in ascending order; and all of them together, in numbers without codes.
    const std::map<int, LayerCounts>& Layers() const { return layers; }
    LayerCounts Total() const;
    // Of the first and the second coordinate of every point.
    const std::array<Range, 2>& Extents() const { return extents; }

  private:
    void AddPoint(map::Point point);

    std::map<int, LayerCounts> layers;
    std::array<Range, 2> extents;
};

}  // namespace vemrado::tools
