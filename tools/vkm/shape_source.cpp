#include "shape_source.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

namespace vemrado::tools {
namespace {

constexpr int defaultCircleSegments = 24;
constexpr int defaultDiscStep = 8;
constexpr size_t pointsOnLine = 8;
constexpr size_t bytesOnLine = 32;

// One line split into words; a quoted text is one word, already without quotes and escapes.
struct Word {
    std::string text;
    bool quoted = false;
};

class Line {
  public:
    Line(std::string_view text, size_t lineNumber) : number(lineNumber) { Split(text); }

    bool IsEmpty() const { return words.empty(); }
    size_t Count() const { return words.size(); }
    const Word& At(size_t index) const { return words[index]; }
    [[noreturn]] void Fail(const std::string& reason) const { throw ShapeSourceError(number, reason); }

    int64_t Integer(size_t index, int64_t low, int64_t high) const {
        const std::string& text = words[index].text;
        int64_t value = 0;
        const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (words[index].quoted || fault != std::errc{} || end != text.data() + text.size()) {
            Fail("\"" + text + "\" is no whole number");
        }
        if (value < low || value > high) {
            Fail(text + " is not between " + std::to_string(low) + " and " + std::to_string(high));
        }
        return value;
    }
    int Coordinate(size_t index) const {
        return static_cast<int>(
            Integer(index, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
    }
    void ExpectWords(size_t fewest, size_t most) const {
        if (Count() >= fewest && Count() <= most) return;
        const std::string range = fewest == most
                                      ? std::to_string(fewest - 1)
                                      : std::to_string(fewest - 1) + " to " + std::to_string(most - 1);
        Fail("\"" + words[0].text + "\" takes " + range + " values");
    }

  private:
    void Split(std::string_view text) {
        size_t i = 0;
        while (true) {
            while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r')) ++i;
            if (i == text.size() || text[i] == '#') return;
            if (text[i] == '"') {
                words.push_back({Quoted(text, ++i), true});
            } else {
                const size_t end = std::min(text.find_first_of(" \t\r#", i), text.size());
                words.push_back({std::string(text.substr(i, end - i)), false});
                i = end;
            }
        }
    }

    std::string Quoted(std::string_view text, size_t& i) const {
        std::string value;
        for (; i < text.size(); ++i) {
            if (text[i] == '"') {
                ++i;
                return value;
            }
            if (text[i] != '\\') {
                value += text[i];
            } else if (i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '"')) {
                value += text[++i];
            } else if (unsigned byte = 0;
                       i + 3 < text.size() && text[i + 1] == 'x' &&
                       std::from_chars(&text[i + 2], &text[i + 2] + 2, byte, 16).ptr == &text[i + 2] + 2) {
                value += static_cast<char>(byte);
                i += 3;
            } else {
                Fail("a backslash in a text begins \\\\, \\\" or \\x and two hexadecimal digits");
            }
        }
        Fail("a text has no closing quote");
    }

    size_t number;
    std::vector<Word> words;
};

class SourceReader {
  public:
    ShapeFile Read(std::string_view source) {
        size_t number = 0;
        while (!source.empty()) {
            const size_t end = std::min(source.find('\n'), source.size());
            const Line line(source.substr(0, end), ++number);
            source.remove_prefix(std::min(end + 1, source.size()));
            if (!line.IsEmpty()) Take(line);
        }
        return std::move(file);
    }

  private:
    void Take(const Line& line) {
        const std::string& word = line.At(0).text;
        if (word == "height") return TakeHeight(line);
        if (word == "drawing") return TakeDrawing(line);
        if (word == "record") return TakeRecord(line);
        if (word == "bytes") return TakeBytes(line);
        if (word == "words") return TakeWords(line);
        if (word == "part") return TakePart(line);
        if (word == "circle" || word == "arc" || word == "rect" || word == "disc") return TakeHelper(line);
        TakePoints(line);
    }

    ShapeDrawing& Drawing(const Line& line) {
        if (!file.items.empty()) {
            if (auto* drawing = std::get_if<ShapeDrawing>(&file.items.back())) return *drawing;
        }
        line.Fail("there is no drawing for \"" + line.At(0).text + "\"");
    }

    void TakeHeight(const Line& line) {
        line.ExpectWords(2, 2);
        file.items.push_back(ShapeHeight{static_cast<int16_t>(line.Coordinate(1))});
    }

    void TakeDrawing(const Line& line) {
        line.ExpectWords(1, 2);
        ShapeDrawing drawing;
        if (line.Count() == 2) {
            if (!line.At(1).quoted) line.Fail("the name of a drawing stands in double quotes");
            if (line.At(1).text.size() > largestDrawing) line.Fail("the name is too long");
            drawing.name = line.At(1).text;
        }
        file.items.push_back(std::move(drawing));
        partOpen = false;
        valueSize = 6;
    }

    void TakeWords(const Line& line) {
        line.ExpectWords(3, 3);
        constexpr int64_t most = std::numeric_limits<uint16_t>::max();
        ShapeDrawing& drawing = Drawing(line);
        drawing.firstWord = static_cast<uint16_t>(line.Integer(1, 0, most));
        drawing.secondWord = static_cast<uint16_t>(line.Integer(2, 0, most));
    }

    void AddPart(const Line& line, int kind) {
        Drawing(line).parts.push_back({kind, {}});
        Grow(line, 2);
    }

    void AddPoint(const Line& line, double x, double y) {
        constexpr double low = std::numeric_limits<int16_t>::min();
        constexpr double high = std::numeric_limits<int16_t>::max();
        if (x < low || x > high || y < low || y > high)
            line.Fail("a point lies outside the range of coordinates");
        std::vector<ShapePoint>& points = Drawing(line).parts.back().points;
        if (points.size() == largestPart)
            line.Fail("a part has at most " + std::to_string(largestPart) + " points");
        points.push_back({static_cast<int16_t>(std::lround(x)), static_cast<int16_t>(std::lround(y))});
        Grow(line, 4);
    }

    void Grow(const Line& line, size_t bytes) {
        valueSize += bytes;
        if (valueSize > largestDrawing) {
            line.Fail("the drawing is larger than " + std::to_string(largestDrawing) + " bytes");
        }
    }

    void TakePart(const Line& line) {
        line.ExpectWords(2, 2);
        AddPart(line, static_cast<int>(line.Integer(1, 0, 3)));
        partOpen = true;
    }

    void TakePoints(const Line& line) {
        const int64_t any = std::numeric_limits<int16_t>::max();
        const char first = line.At(0).text.empty() ? ' ' : line.At(0).text[0];
        if (line.At(0).quoted || (first != '-' && (first < '0' || first > '9'))) {
            line.Fail("\"" + line.At(0).text + "\" is not a word of shape sources");
        }
        Drawing(line);
        if (!partOpen) line.Fail("points stand after the line \"part\" that they belong to");
        if (line.Count() % 2 != 0) line.Fail("a point has two coordinates");
        for (size_t i = 0; i < line.Count(); i += 2) {
            AddPoint(line, static_cast<double>(line.Integer(i, -any - 1, any)), line.Coordinate(i + 1));
        }
    }

    // Figures that become parts of kind 0 of their own.
    void TakeHelper(const Line& line) {
        const std::string& word = line.At(0).text;
        partOpen = false;
        if (word == "circle") {
            line.ExpectWords(4, 5);
            const int segments = line.Count() == 5 ? Segments(line, 4) : defaultCircleSegments;
            AddArc(line, line.Coordinate(3), 0, 360, segments);
        } else if (word == "arc") {
            line.ExpectWords(6, 7);
            const int segments = line.Count() == 7 ? Segments(line, 6) : defaultCircleSegments / 2;
            AddArc(line, line.Coordinate(3), line.Coordinate(4), line.Coordinate(5), segments);
        } else if (word == "disc") {
            line.ExpectWords(4, 5);
            const int step = line.Count() == 5 ? static_cast<int>(line.Integer(4, 1, 1000)) : defaultDiscStep;
            for (int radius = line.Coordinate(3); radius > 0; radius -= step)
                AddArc(line, radius, 0, 360, 16);
        } else {
            line.ExpectWords(5, 5);
            AddPart(line, 0);
            const int x1 = line.Coordinate(1);
            const int y1 = line.Coordinate(2);
            const int x2 = line.Coordinate(3);
            const int y2 = line.Coordinate(4);
            for (const auto& [x, y] : {std::pair{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}})
                AddPoint(line, x, y);
        }
    }

    static int Segments(const Line& line, size_t index) {
        return static_cast<int>(line.Integer(index, 1, 1000));
    }

    // Around the line's first two values; degrees from east, counter-clockwise.
    void AddArc(const Line& line, int radius, int from, int to, int segments) {
        AddPart(line, 0);
        const int x = line.Coordinate(1);
        const int y = line.Coordinate(2);
        for (int i = 0; i <= segments; ++i) {
            const double degrees =
                from + static_cast<double>(to - from) * (to - from == 360 ? i % segments : i) / segments;
            const double angle = degrees * std::numbers::pi / 180;
            AddPoint(line, x + radius * std::cos(angle), y + radius * std::sin(angle));
        }
    }

    void TakeRecord(const Line& line) {
        line.ExpectWords(2, 3);
        ShapeRecord record;
        record.header = line.At(1).text;
        const char type = TypeOfHeader(record.header);
        if (type == 0) line.Fail("\"" + record.header + "\" is no header of a record");
        if ((type == '~') != (line.Count() == 3))
            line.Fail("a record of type \"~\", and only that, has a second size");
        if (type == '~') {
            record.secondSize =
                static_cast<uint32_t>(line.Integer(2, 0, std::numeric_limits<uint32_t>::max()));
        }
        file.items.push_back(std::move(record));
    }

    void TakeBytes(const Line& line) {
        line.ExpectWords(2, 2);
        auto* record = file.items.empty() ? nullptr : std::get_if<ShapeRecord>(&file.items.back());
        if (record == nullptr) line.Fail("\"bytes\" stands after the line \"record\" that it belongs to");
        const std::string& digits = line.At(1).text;
        if (digits.size() % 2 != 0) line.Fail("a byte has two hexadecimal digits");
        for (size_t i = 0; i < digits.size(); i += 2) {
            unsigned byte = 0;
            const char* const end = digits.data() + i + 2;
            if (std::from_chars(end - 2, end, byte, 16).ptr != end)
                line.Fail("a byte has two hexadecimal digits");
            record->value += static_cast<char>(byte);
        }
    }

    ShapeFile file;
    bool partOpen = false;
    size_t valueSize = 0;
};

constexpr char hexDigits[] = "0123456789ABCDEF";

std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<uint8_t>(character);
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 15];
    }
    return text;
}

std::string Quote(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (character >= ' ' && character <= '~') {
            quoted += character;
        } else {
            quoted.append("\\x").append(Hex({&character, 1}));
        }
    }
    return quoted + '"';
}

void Append(std::string& source, const ShapeHeight& height) {
    source += "height " + std::to_string(height.value) + "\n";
}

void Append(std::string& source, const ShapeDrawing& drawing) {
    source += "\ndrawing";
    if (drawing.name) source.append(" ").append(Quote(*drawing.name));
    source += "\n";
    if (drawing.firstWord != 0 || drawing.secondWord != 0) {
        source +=
            "  words " + std::to_string(drawing.firstWord) + " " + std::to_string(drawing.secondWord) + "\n";
    }
    for (const ShapePart& part : drawing.parts) {
        source += "  part " + std::to_string(part.kind) + "\n";
        for (size_t i = 0; i < part.points.size(); ++i) {
            source += i % pointsOnLine == 0 ? "    " : "  ";
            source += std::to_string(part.points[i].x) + " " + std::to_string(part.points[i].y);
            if (i % pointsOnLine == pointsOnLine - 1 || i + 1 == part.points.size()) source += "\n";
        }
    }
}

void Append(std::string& source, const ShapeRecord& record) {
    source.append("\nrecord ").append(Quote(record.header));
    if (TypeOfHeader(record.header) == '~') source.append(" ").append(std::to_string(record.secondSize));
    source += "\n";
    for (size_t i = 0; i < record.value.size(); i += bytesOnLine) {
        source.append("  bytes ")
            .append(Hex(std::string_view(record.value).substr(i, bytesOnLine)))
            .append("\n");
    }
}

}  // namespace

ShapeFile ReadShapeSource(std::string_view source) {
    return SourceReader().Read(source);
}

std::string WriteShapeSource(const ShapeFile& file) {
    std::string source;
    for (const ShapeItem& item : file.items) {
        std::visit([&](const auto& record) { Append(source, record); }, item);
    }
    return source;
}

}  // namespace vemrado::tools
