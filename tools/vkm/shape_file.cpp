#include "shape_file.h"

#include <array>
#include <limits>

namespace vemrado::tools {
namespace {

constexpr std::string_view magic = "\xC4\x4A\xB1\x29";
constexpr std::string_view typeCharacters = "%&#$@~!";
constexpr size_t longestHeader = 256;  // with its "="
constexpr std::string_view drawingHeader = "SYM$";
constexpr std::string_view heightHeader = "HEIGHT%";
constexpr std::string_view nameHeader = "NAME$";

struct Range {
    uint8_t first;
    uint8_t last;
};

// Letters, digits, the full stop, the underline, and the letters of Windows-1250.
constexpr std::array<Range, 18> nameCharacters{{{'.', '.'},
                                                {'0', '9'},
                                                {'A', 'Z'},
                                                {'_', '_'},
                                                {'a', 'z'},
                                                {0x8A, 0x8A},
                                                {0x8C, 0x8F},
                                                {0x9A, 0x9A},
                                                {0x9C, 0x9F},
                                                {0xA5, 0xA5},
                                                {0xAA, 0xAA},
                                                {0xAF, 0xAF},
                                                {0xB9, 0xBA},
                                                {0xBC, 0xBC},
                                                {0xBE, 0xD6},
                                                {0xD8, 0xDE},
                                                {0xE0, 0xF6},
                                                {0xF8, 0xFE}}};

bool IsNameCharacter(char character) {
    const auto byte = static_cast<uint8_t>(character);
    for (const Range& range : nameCharacters) {
        if (byte >= range.first && byte <= range.last) return true;
    }
    return false;
}

class Reader {
  public:
    explicit Reader(std::string_view content) : bytes(content) {}

    bool AtEnd() const { return position == bytes.size(); }

    void Magic() {
        if (bytes.substr(0, magic.size()) != magic) Fail("it does not begin as a shape file does");
        position = magic.size();
    }

    ShapeRecord Record() {
        ShapeRecord record;
        record.header = Header();
        record.value = Bytes(ValueSize(TypeOfHeader(record.header), record.secondSize));
        return record;
    }

  private:
    [[noreturn]] void Fail(const std::string& reason) const { throw ShapeFileError(position, reason); }

    std::string Header() {
        const size_t equals = bytes.find('=', position);
        if (equals == std::string_view::npos || equals - position >= longestHeader)
            Fail("a record has no header");
        const std::string header(bytes.substr(position, equals - position));
        if (TypeOfHeader(header) == 0) Fail("a record's header is not well formed");
        position = equals + 1;
        return header;
    }

    size_t ValueSize(char type, uint32_t& secondSize) {
        switch (type) {
            case '%':
                return 2;
            case '&':
                return 4;
            case '#':
                return 8;
            case '$':
                return static_cast<size_t>(Number(2));
            case '~': {
                const auto size = static_cast<size_t>(Number(4));
                secondSize = static_cast<uint32_t>(Number(4));
                return size;
            }
            default:
                return static_cast<size_t>(Number(4));
        }
    }

    uint64_t Number(size_t size) {
        const std::string text = Bytes(size);
        uint64_t number = 0;
        for (size_t i = size; i-- > 0;) number = number << 8 | static_cast<uint8_t>(text[i]);
        return number;
    }

    std::string Bytes(size_t count) {
        if (bytes.size() - position < count) Fail("the file ends within a record");
        const std::string text(bytes.substr(position, count));
        position += count;
        return text;
    }

    std::string_view bytes;
    size_t position = 0;
};

uint16_t WordAt(std::string_view bytes, size_t offset) {
    return static_cast<uint16_t>(static_cast<uint8_t>(bytes[offset]) | static_cast<uint8_t>(bytes[offset + 1])
                                                                           << 8);
}

// The drawing of a SYM value; none when its length is not what its parts say.
std::optional<ShapeDrawing> DrawingOf(std::string_view value) {
    if (value.size() < 6) return std::nullopt;
    ShapeDrawing drawing;
    drawing.firstWord = WordAt(value, 0);
    drawing.secondWord = WordAt(value, 2);
    const size_t partCount = WordAt(value, 4);
    size_t points = 6 + 2 * partCount;
    if (value.size() < points) return std::nullopt;
    for (size_t part = 0; part < partCount; ++part) {
        const uint16_t word = WordAt(value, 6 + 2 * part);
        const size_t count = word & largestPart;
        if (value.size() - points < 4 * count) return std::nullopt;
        drawing.parts.push_back({word >> 14, {}});
        for (size_t i = 0; i < count; ++i, points += 4) {
            drawing.parts.back().points.push_back({static_cast<int16_t>(WordAt(value, points)),
                                                   static_cast<int16_t>(WordAt(value, points + 2))});
        }
    }
    if (points != value.size()) return std::nullopt;
    return drawing;
}

void AppendNumber(std::string& bytes, uint64_t number, size_t size) {
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

void AppendWord(std::string& bytes, int word) {
    AppendNumber(bytes, static_cast<uint16_t>(word), 2);
}

std::string ValueOf(const ShapeDrawing& drawing) {
    std::string value;
    AppendWord(value, drawing.firstWord);
    AppendWord(value, drawing.secondWord);
    if (drawing.parts.size() > largestDrawing / 2) throw ShapeFileError(0, "a drawing has too many parts");
    AppendWord(value, static_cast<int>(drawing.parts.size()));
    for (const ShapePart& part : drawing.parts) {
        if (part.points.size() > largestPart) throw ShapeFileError(0, "a part has too many points");
        AppendWord(value, part.kind << 14 | static_cast<int>(part.points.size()));
    }
    for (const ShapePart& part : drawing.parts) {
        for (const ShapePoint& point : part.points) {
            AppendWord(value, point.x);
            AppendWord(value, point.y);
        }
    }
    return value;
}

void Append(std::string& bytes, const ShapeRecord& record) {
    const char type = TypeOfHeader(record.header);
    const size_t size = record.value.size();
    const size_t fixed = type == '%' ? 2 : type == '&' ? 4 : type == '#' ? 8 : size;
    const uint64_t most = type == '$' ? largestDrawing : std::numeric_limits<uint32_t>::max();
    if (type == 0) throw ShapeFileError(0, "a record's header is not well formed");
    if (size != fixed || size > most)
        throw ShapeFileError(0, "a record's value does not have its type's size");
    bytes += record.header;
    bytes += '=';
    if (type == '$') AppendNumber(bytes, size, 2);
    if (type == '@' || type == '~' || type == '!') AppendNumber(bytes, size, 4);
    if (type == '~') AppendNumber(bytes, record.secondSize, 4);
    bytes += record.value;
}

void Append(std::string& bytes, const ShapeHeight& height) {
    ShapeRecord record{std::string(heightHeader), 0, {}};
    AppendWord(record.value, height.value);
    Append(bytes, record);
}

void Append(std::string& bytes, const ShapeDrawing& drawing) {
    if (drawing.name) Append(bytes, ShapeRecord{std::string(nameHeader), 0, *drawing.name});
    Append(bytes, ShapeRecord{std::string(drawingHeader), 0, ValueOf(drawing)});
}

}  // namespace

char TypeOfHeader(std::string_view header) {
    if (header.size() >= longestHeader) return 0;
    char type = 0;
    for (const char character : header) {
        if (typeCharacters.find(character) != std::string_view::npos) {
            type = character;
        } else if (!IsNameCharacter(character)) {
            return 0;
        }
    }
    return type;
}

ShapeFile ReadShapeFile(std::string_view bytes) {
    Reader reader(bytes);
    reader.Magic();
    ShapeFile file;
    while (!reader.AtEnd()) {
        ShapeRecord record = reader.Record();
        if (record.header == heightHeader) {
            file.items.push_back(ShapeHeight{static_cast<int16_t>(WordAt(record.value, 0))});
            continue;
        }
        std::optional<ShapeDrawing> drawing;
        if (record.header == drawingHeader) drawing = DrawingOf(record.value);
        if (!drawing) {
            file.items.push_back(std::move(record));
            continue;
        }
        if (!file.items.empty()) {
            if (auto* before = std::get_if<ShapeRecord>(&file.items.back());
                before && before->header == nameHeader) {
                drawing->name = std::move(before->value);
                file.items.pop_back();
            }
        }
        file.items.push_back(std::move(*drawing));
    }
    return file;
}

std::string WriteShapeFile(const ShapeFile& file) {
    std::string bytes(magic);
    for (const ShapeItem& item : file.items) {
        std::visit([&](const auto& record) { Append(bytes, record); }, item);
    }
    return bytes;
}

}  // namespace vemrado::tools
