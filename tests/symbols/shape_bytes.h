// The bytes of shape files.

#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vemrado_test {

inline std::string Word(uint32_t value) {
    return {static_cast<char>(value & 255), static_cast<char>(value >> 8 & 255)};
}
inline std::string Long(uint32_t value) {
    return Word(value & 0xFFFF) + Word(value >> 16);
}

const std::string shapeMagic = "\xC4\x4A\xB1\x29";

struct ShapePart {
    uint32_t kind;
    std::vector<std::pair<int, int>> points;
};

inline std::string DrawingValue(const std::vector<ShapePart>& parts) {
    std::string words;
    std::string points;
    for (const ShapePart& part : parts) {
        words += Word(part.kind << 14 | static_cast<uint32_t>(part.points.size()));
        for (const auto& [x, y] : part.points) {
            points += Word(static_cast<uint32_t>(x)) + Word(static_cast<uint32_t>(y));
        }
    }
    return Word(0) + Word(0) + Word(static_cast<uint32_t>(parts.size())) + words + points;
}

inline std::string ShapeRecord(const std::string& value) {
    return "SYM$=" + Word(static_cast<uint32_t>(value.size())) + value;
}
inline std::string Drawing(const std::vector<ShapePart>& parts) {
    return ShapeRecord(DrawingValue(parts));
}
// A drawing that tells itself from others: one stroke from (0, 0) to (x, 0).
inline std::string Stroke(int x) {
    return Drawing({{0, {{0, 0}, {x, 0}}}});
}

}  // namespace vemrado_test
