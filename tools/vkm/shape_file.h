// Shape files (.ksh), the tagged binary files of point symbols, taken apart so that nothing is lost: what is
// read and written again has the same bytes. docs/symbology-format.md describes the format.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vemrado::tools {

struct ShapePoint {
    int16_t x = 0;
    int16_t y = 0;
};

struct ShapePart {
    int kind = 0;  // 0 to 3
    std::vector<ShapePoint> points;
};

// A record SYM, and the record NAME that stands right before it when there is one.
struct ShapeDrawing {
    std::optional<std::string> name;  // bytes of the NAME record
    uint16_t firstWord = 0;
    uint16_t secondWord = 0;
    std::vector<ShapePart> parts;
};

// A record HEIGHT.
struct ShapeHeight {
    int16_t value = 0;
};

// Any other record, or one of those above that is not as it should be.
struct ShapeRecord {
    std::string header;       // name, type character and whatever follows it, without the "="
    uint32_t secondSize = 0;  // the second length of type "~"
    std::string value;
};

using ShapeItem = std::variant<ShapeDrawing, ShapeHeight, ShapeRecord>;

struct ShapeFile {
    std::vector<ShapeItem> items;
};

// Bytes that are no shape file. what() is the reason.
class ShapeFileError : public std::runtime_error {
  public:
    ShapeFileError(size_t offset, const std::string& reason) : std::runtime_error(reason), position(offset) {}
    size_t Offset() const { return position; }

  private:
    size_t position;
};

// These throw ShapeFileError; the offset of a writing error is 0.
ShapeFile ReadShapeFile(std::string_view bytes);
std::string WriteShapeFile(const ShapeFile& file);

// The type character of a header, 0 when the header is not well formed.
char TypeOfHeader(std::string_view header);

inline constexpr size_t largestDrawing = 65535;  // bytes of a SYM value, whose length has 16 bits
inline constexpr size_t largestPart = 0x3FFF;    // points

}  // namespace vemrado::tools
