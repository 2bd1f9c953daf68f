#include "naive_tables.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace vemrado_test {
namespace {

std::string Trim(const std::string& text) {
    const size_t from = text.find_first_not_of(" \t\r\n\v\f");
    return from == std::string::npos ? ""
                                     : text.substr(from, text.find_last_not_of(" \t\r\n\v\f") + 1 - from);
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text.substr(0, text.find('\x1A')));
    for (std::string line; std::getline(stream, line);) lines.push_back(Trim(line.c_str()));
    return lines;
}

// The next field of rest, which loses it and the delimiter behind it.
std::string Take(std::string& rest, const std::string& delimiters = " \t") {
    rest.erase(0, rest.find_first_not_of(delimiters));
    const size_t end = std::min(rest.find_first_of(delimiters), rest.size());
    const std::string field = rest.substr(0, end);
    rest.erase(0, end + 1);
    return field;
}

int Integer(const std::string& text) {
    return static_cast<int>(
        std::clamp<long long>(std::strtoll(text.c_str(), nullptr, 10), -2147483648L, 2147483647L));
}

double Real(const std::string& text) {
    return std::strtod(text.c_str(), nullptr);
}

bool Pair(std::string& rest, std::string& a, std::string& b) {
    a = b = "";
    const std::string field = Take(rest);
    const size_t comma = field.find(',');
    if (field.empty()) return false;
    const size_t next = rest.find_first_of(",.+-0123456789");
    if (comma == std::string::npos) {
        a = field;
        if (next == std::string::npos || rest[next] != ',') return true;
    } else if (field.back() == ',') {
        a = field.substr(0, field.size() - 1);
    } else {
        std::string halves = field;
        a = Take(halves, ",");
        b = Take(halves, ",");
        return true;
    }
    b = Take(rest, " \t,");
    return !b.empty();
}

std::string Lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

template <class Value>
void InsertAt(std::vector<Value>& values, int index, Value value) {
    if (index < 0 || index > 16777215) return;
    const size_t place = static_cast<size_t>(index);
    if (place >= values.size()) values.resize(place);
    values.insert(values.begin() + index, value);
}

bool ReadCodes(const std::string& text, const std::string& header, std::map<int, int>& codes) {
    bool inside = false;
    for (const std::string& line : Lines(text)) {
        if (!inside) {
            inside = Lower(line) == header;
            continue;
        }
        if (line[0] == ':') break;
        std::string rest = line;
        const std::string from = Take(rest);
        const std::string to = Take(rest);
        if (line[0] != '*' && !to.empty()) codes.emplace(Integer(from), Integer(to));
    }
    return inside;
}

std::string Number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

struct Point {
    double x, y;
    int code;
};

void AddPoint(std::vector<Point>& list, int x, int y, int code) {
    const Point point = {x * 0.01, y * 0.01, code};
    if (list.size() >= 1002 || (!list.empty() && point.x == list.back().x && point.y == list.back().y))
        return;
    list.push_back(point);
}

std::string DrawingText(const NaiveShapes::Drawing& drawing) {
    std::vector<Point> list;
    for (const NaiveShapes::Part& part : drawing) {
        if (part.kind == 2 || part.points.empty()) continue;
        const auto [x, y] = part.points[0];
        AddPoint(list, x, y, 0);
        if (std::count(part.points.begin(), part.points.end(), part.points[0]) ==
            static_cast<ptrdiff_t>(part.points.size())) {
            AddPoint(list, x + 1, y, 1);
        } else {
            for (size_t i = 1; i < part.points.size(); ++i) {
                AddPoint(list, part.points[i].first, part.points[i].second, 1);
            }
        }
    }
    list.resize(std::min<size_t>(list.size(), 1001));
    std::string text;
    Point last = {0, 0, 0};
    for (const Point& point : list) {
        text.append(" ").append(Number(point.x - last.x)).append(",").append(Number(point.y - last.y));
        text.append(point.code == 0 ? ",0" : ",1");
        last = point;
    }
    return text + " @";
}

bool IsNameByte(unsigned c) {
    static const std::string others = "\x8A\x8C\x8D\x8E\x8F\x9A\x9C\x9D\x9E\x9F\xA5\xAA\xAF\xB9\xBA\xBC";
    if (c < 128) return std::isalnum(static_cast<int>(c)) || c == '.' || c == '_';
    return others.find(static_cast<char>(c)) != std::string::npos ||
           (c >= 0xBE && c != 0xD7 && c != 0xDF && c != 0xF7 && c != 0xFF);
}

// Bytes of a file from a place on; beyond its end all are 0.
struct Cursor {
    const std::string& bytes;
    size_t at;

    bool Has(size_t count) const { return at + count <= bytes.size(); }
    unsigned Byte() {
        const unsigned byte = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
        ++at;
        return byte;
    }
    unsigned Word() {
        const unsigned low = Byte();
        return low | Byte() << 8;
    }
    size_t Long() {
        const unsigned low = Word();
        return low | static_cast<size_t>(Word()) << 16;
    }
    int Signed() { return static_cast<int16_t>(Word()); }
};

NaiveShapes::Drawing ReadDrawing(Cursor value, size_t size) {
    value.Long();
    const size_t partCount = value.Word();
    if (6 + 2 * partCount > size) return {};
    NaiveShapes::Drawing drawing(partCount);
    size_t points = 0;
    for (NaiveShapes::Part& part : drawing) {
        const unsigned word = value.Word();
        part.kind = static_cast<int>(word >> 14);
        points += word & 0x3FFF;
        if (6 + 2 * partCount + 4 * points > size) return {};
        part.points.resize(word & 0x3FFF);
    }
    for (NaiveShapes::Part& part : drawing) {
        for (auto& [x, y] : part.points) {
            x = value.Signed();
            y = value.Signed();
        }
    }
    return drawing;
}

}  // namespace

NaiveShapes NaiveShapeFile(const std::string& bytes) {
    NaiveShapes shapes;
    Cursor cursor{bytes, 0};
    if (!cursor.Has(4) || cursor.Long() != 0x29B14AC4) return shapes;
    for (;;) {
        std::string name;
        size_t type = std::string::npos;
        unsigned byte = 0;
        for (int i = 0; i < 256 && byte != '='; ++i) {
            if (!cursor.Has(1)) return shapes;
            byte = cursor.Byte();
            const size_t found = std::string("%&#$@~!").find(static_cast<char>(byte));
            if (found != std::string::npos) {
                type = found;
            } else if (IsNameByte(byte)) {
                if (type == std::string::npos) name += static_cast<char>(byte);
            } else if (byte != '=') {
                return shapes;
            }
        }
        static const size_t lengthBytes[] = {0, 0, 0, 2, 4, 8, 4};
        if (type == std::string::npos || !cursor.Has(lengthBytes[type])) return shapes;
        size_t size = type < 3 ? size_t{2} << type : type == 3 ? cursor.Word() : cursor.Long();
        if (type == 5) cursor.Long();
        if (type == 0 && name == "HEIGHT" && cursor.Has(2)) shapes.height = Cursor(cursor).Signed();
        if (type == 3 && name == "SYM") shapes.drawings.push_back(ReadDrawing(cursor, size));
        cursor.at += size;
    }
}

NaiveTables::NaiveTables(const std::map<std::string, std::string>& files) : shapeFiles(files) {
    ReadColors(files.at("WKOKES.COL"));
    ReadLineTypes(files.at("WKOKES.CAR"));
    if (!ReadCodes(files.at("DKM1_3.TB"), ":l", lineCodes)) missing += 'L';
    if (!ReadCodes(files.at("DKM1_3.TB"), ":s", symbolCodes)) missing += 'S';
    ReadSymbols(files.at("WKOKES.SYM"));
}

void NaiveTables::ReadColors(const std::string& text) {
    colors.resize(256);
    widths.resize(64);
    const std::vector<std::string> lines = Lines(text);
    for (const char* section : {"[white]", "[width]"}) {
        auto line = std::find_if(lines.begin(), lines.end(),
                                 [&](const auto& each) { return Lower(each) == section; });
        const bool isWidth = section[2] == 'i';
        if (line == lines.end()) {
            missing += isWidth ? 'w' : 'c';
            return;
        }
        for (++line; line != lines.end() && line->find('[') == std::string::npos; ++line) {
            std::string rest = *line;
            const std::string index = Take(rest, "=");
            if (line->empty() || (*line)[0] == ';' || index.empty()) continue;
            unsigned value[3];
            const std::string all = rest;
            for (unsigned& part : value) part = static_cast<unsigned>(Integer(Take(rest, ","))) & 255;
            rest = all;
            Take(rest, ",");
            if (isWidth) {
                InsertAt(widths, Integer(index), Real(Take(rest, ",")));
            } else {
                InsertAt(colors, Integer(index),
                         static_cast<uint32_t>(value[0] + 256 * value[1] + 65536 * value[2]));
            }
        }
    }
}

void NaiveTables::ReadLineTypes(const std::string& text) {
    for (const std::string& line : Lines(text)) {
        if (line[0] == '*') continue;
        std::string rest = line;
        const int number = Integer(Take(rest));
        if (number > 0) {
            Definition& definition = definitions[number] = {};
            std::string a, b;
            if (!Pair(rest, a, b)) continue;
            if (!a.empty()) definition.colour = Integer(a);
            const std::string style = Take(rest);
            if (!style.empty()) definition.style = Integer(style);
        } else if (number < 0 && number >= -16777215) {
            std::vector<double>& pattern = patterns[-number] = {};
            for (std::string field = Take(rest); !field.empty(); field = Take(rest))
                pattern.push_back(Real(field));
        }
    }
}

void NaiveTables::ReadSymbols(const std::string& text) {
    bool haveList = false;
    for (const std::string& line : Lines(text)) {
        if (line.empty() || line[0] == '*') continue;
        std::string rest = line;
        if (!haveList) {
            haveList = true;
            for (std::string field = Take(rest); !field.empty(); field = Take(rest))
                shapeNames.push_back(field + ".ksh");
            continue;
        }
        const int code = Integer(Take(rest));
        const int64_t file = (int64_t{code} - 1) / 255;
        Reference reference = {static_cast<int>(file), static_cast<int>(code - 255 * file)};
        if (line[0] == '"') {
            std::string name, number;
            reference = {};
            if (Pair(rest, name, number)) {
                const auto same = [&](const std::string& each) { return Lower(each) == Lower(name); };
                const auto found = std::find_if(shapeNames.begin(), shapeNames.end(), same);
                reference.file =
                    found == shapeNames.end() ? -1 : static_cast<int>(found - shapeNames.begin());
                reference.number = Integer(number);
            }
        }
        references[code] = reference;
    }
}

NaiveTables::LineStyle NaiveTables::Style(int vkmCode) const {
    const auto code = lineCodes.find(vkmCode);
    if (code == lineCodes.end() || code->second == 0 || definitions.count(code->second) == 0) return {};
    const Definition& definition = definitions.at(code->second);
    LineStyle style{1, 0, ""};
    if (definition.colour >= 0 && static_cast<size_t>(definition.colour) < colors.size()) {
        style.colour = colors[static_cast<size_t>(definition.colour)];
    }
    if (definition.style >= 0 || definition.style < -16777215 || patterns.count(-definition.style) == 0)
        return style;
    style.pattern = std::string("L_") + std::to_string(-definition.style) + ":";
    const std::vector<double>& lengths = patterns.at(-definition.style);
    for (size_t i = 0; i < std::min<size_t>(lengths.size(), 1001); ++i) {
        style.pattern.append(" ").append(Number(lengths[i])).append(i % 2 == 0 ? ",0,1" : ",0,0");
    }
    style.pattern += " @";
    return style;
}

std::string NaiveTables::Symbol(int vkmCode) const {
    const auto code = symbolCodes.find(vkmCode);
    if (code == symbolCodes.end()) return "";
    const auto found = references.find(code->second);
    const Reference reference = found == references.end() ? Reference{} : found->second;
    if (reference.file < 0 || static_cast<size_t>(reference.file) >= shapeNames.size()) return "";
    const auto file = shapeFiles.find(shapeNames[static_cast<size_t>(reference.file)]);
    if (file == shapeFiles.end()) return "";
    const NaiveShapes shapes = NaiveShapeFile(file->second);
    if (shapes.drawings.empty()) return "";
    const std::string name = std::string("S_") + std::to_string(std::labs(vkmCode)) + ":";
    const bool exists =
        reference.number >= 1 && static_cast<size_t>(reference.number) <= shapes.drawings.size();
    return name + (exists ? DrawingText(shapes.drawings[static_cast<size_t>(reference.number - 1)]) : " @");
}

}  // namespace vemrado_test
