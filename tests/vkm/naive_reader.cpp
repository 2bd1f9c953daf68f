#include "vkm/naive_reader.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "c_library.h"

namespace vemrado_test {

namespace {

std::string Bits(double value) {
    unsigned long long bits;
    std::memcpy(&bits, &value, sizeof bits);
    if (value != value) bits = ~0ull;
    char text[24];
    std::snprintf(text, sizeof text, " %016llx", bits);
    return text;
}

// Text mode first: 0x1A ends the file, a carriage return before a line feed is dropped. Then pieces of 1023.
std::vector<std::string> Lines(const std::string& bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size() && bytes[i] != 0x1A; ++i) {
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') continue;
        text += bytes[i];
    }
    std::vector<std::string> lines;
    std::string line;
    for (const char c : text) {
        line += c;
        if (c != '\n' && line.size() < 1023) continue;
        lines.push_back(line);
        line.clear();
    }
    if (!line.empty()) lines.push_back(line);
    for (std::string& each : lines) {
        each = each.substr(0, each.find('\0'));
        if (!each.empty() && each.back() == '\n') each.pop_back();
    }
    return lines;
}

bool Blank(char c) {
    return c == ' ' || c == '\t' || c == '\0';
}
bool In(const char* set, char c) {
    return c != '\0' && std::strchr(set, c) != nullptr;
}

struct Splitter {
    char buffer[1024] = {};
    char* cursor = buffer;
    int remaining = 0;

    void Set(const std::string& line) {
        std::strcpy(buffer, line.c_str());
        cursor = buffer;
        remaining = static_cast<int>(line.size());
    }
    void Step() {
        ++cursor;
        --remaining;
    }
    bool Skip() {
        while (remaining > 0 && Blank(*cursor)) Step();
        return remaining > 0;
    }
    char* Token() {
        if (!Skip()) return nullptr;
        char* token = cursor;
        while (remaining > 0 && !Blank(*cursor)) Step();
        EndField();
        return token;
    }
    char* Quoted() {
        while (remaining > 0 && !In("\"'`%", *cursor)) Step();
        if (remaining == 0) return nullptr;
        const char quote = *cursor;
        Step();
        if (remaining == 0) return nullptr;
        char* text = cursor;
        while (remaining > 0 && *cursor != quote) Step();
        EndField();
        return text;
    }
    char* KeyValue(const char* keys, char& key) {
        while (Skip()) {
            if (In(keys, *cursor)) {
                key = *cursor;
                Step();
                if (!Skip()) return nullptr;
                if (*cursor == '=') {
                    Step();
                    return Token();
                }
            }
            while (remaining > 0 && !Blank(*cursor)) Step();
        }
        return nullptr;
    }
    void EndField() {
        if (remaining == 0) return;
        *cursor = '\0';
        Step();
    }
};

double Real(const char* field) {
    return field ? StandardStrtod(field) : 0;
}

int Integer(const char* field) {
    const long long value = field ? std::strtoll(field, nullptr, 10) : 0;
    return static_cast<int>(value > 2147483647        ? 2147483647
                            : value < -2147483647 - 1 ? -2147483647 - 1
                                                      : value);
}

struct Text {
    double x = 0, y = 0;
    std::string text;
    int d = 2, f = 1, code = 0;
    double h = 1.7, u = 0;
};

const SeenVertex emptyVertex = {0, 0, 0, 0, "", 1, 0, 0, 0};

struct Reading {
    std::vector<std::string> lines;
    size_t next = 0;
    int orientation = 1;
    Splitter split;
    double originX = 0, originY = 0, scale = 1000;
    bool relative = false;
    int layer = 0, elementLayer = 0;
    std::string layerName, elementLayerName;
    std::vector<SeenVertex> line;
    SeenVertex vertex = emptyVertex;
    bool vertexPending = false, textPending = false;
    Text text, lastText;
    int state = 1;

    void Point(double& x, double& y) {
        y = Real(split.Token());
        x = Real(split.Token());
        if (relative) {
            x += originX;
            y += originY;
        }
        const double a = x, b = y;
        switch (orientation) {
            case 2:
                y = -b;
                break;
            case 4:
                x = -a;
                break;
            case 8:
                x = -a, y = -b;
                break;
            case 16:
                x = b, y = a;
                break;
            case 32:
                x = -b, y = a;
                break;
            case 64:
                x = b, y = -a;
                break;
            case 128:
                x = -b, y = -a;
                break;
        }
    }

    void Vertex(int type, bool start) {
        if (start) {
            vertex = emptyVertex;
            vertex.type = type;
            Point(vertex.x, vertex.y);
        }
        char key;
        while (char* value = split.KeyValue("KMRSUX", key)) {
            if (key == 'K') vertex.code = value;
            if (key == 'M') vertex.m = Real(value);
            if (key == 'R') vertex.r = Real(value);
            if (key == 'S') vertex.symbol = Integer(value);
            if (key == 'U') vertex.u = Real(value);
        }
        vertexPending = true;
    }

    void Defaults() {
        static const double rows[][3] = {{1001, 8.5, 6}, {1002, 5, 4},   {1004, 6.7, 4}, {1005, 4.4, 4},
                                         {1007, 2.3, 2}, {1008, 1.4, 2}, {1009, 4.4, 4}, {1010, 2.9, 2},
                                         {1012, 8.5, 7}, {1013, 4.4, 3}, {1014, 3.4, 1}, {1015, 2.3, 1},
                                         {1018, 1.7, 1}};
        if (text.code != 0 && layer == 7) {
            for (const auto& row : rows) {
                if (text.code == row[0]) text.h = row[1], text.f = static_cast<int>(row[2]);
            }
        } else if (text.code == 0 && layer == 2) {
            text.code = 18, text.f = 1, text.h = 1.7;
        } else if (text.code == 0 && layer == 8) {
            text.code = 1016, text.f = 2, text.h = 1.7;
        }
    }

    void TextLine(bool start) {
        if (start) {
            text = Text();
            Point(text.x, text.y);
            if (const char* quoted = split.Quoted()) text.text = std::string(quoted).substr(0, 255);
        }
        char key;
        while (char* value = split.KeyValue("DFHKUX", key)) {
            if (key == 'D') text.d = Integer(value);
            if (key == 'F') text.f = Integer(value);
            if (key == 'H') text.h = Real(value);
            if (key == 'K') text.code = Integer(value);
            if (key == 'U') text.u = Real(value);
        }
        Defaults();
        textPending = true;
    }

    void Dispatch(int letter, bool start) {
        if (letter == 'V') {
            split.Token();
            originY = Real(split.Token());
            originX = Real(split.Token());
        } else if (letter == 'R') {
            for (int i = 0; i < 4; ++i) split.Token();
            const char* number = split.Token();
            scale = number ? Real(number) : 1000;
            const char* mode = split.Token();
            relative = mode && In("Rr", *mode);
        } else if (letter == 'U') {
            layer = Integer(split.Token());
            layerName = std::to_string(layer).substr(0, 2);
        } else if (letter == 'L') {
            const char* type = split.Token();
            Vertex(type == nullptr ? 0 : In("CKLPR", *type) ? *type : 1, start);
        } else if (letter == 'T') {
            TextLine(start);
        }
    }

    // False at the end of the file.
    bool NextLine(int& recordClass, const char*& first) {
        if (next == lines.size()) return false;
        split.Set(lines[next++]);
        first = split.Token();
        recordClass = first == nullptr ? 0 : *first != '&' ? 2 : In("*DGKLRSTUV", first[1]) ? first[1] : 1;
        return true;
    }

    void Flush() {
        if (!vertexPending) return;
        line.push_back(vertex);
        vertex = emptyVertex;
        vertexPending = false;
    }

    void Header() {
        int recordClass = 0;
        const char* first;
        state = 0;
        while (NextLine(recordClass, first)) {
            Dispatch(recordClass, true);
            state = recordClass;
            if (recordClass != 0 && std::strchr("VRD*", recordClass) == nullptr) return;
        }
    }

    int Next() {
        if (state == 'K') return 0;
        line.clear();
        Flush();
        int recordClass;
        const char* first;
        while (NextLine(recordClass, first)) {
            if (recordClass == 1) continue;
            if (recordClass == 0 || recordClass == 2) {
                if (state == 'L' && first != nullptr && In("CKLPR", *first)) {
                    Flush();
                    Vertex(*first, true);
                } else if (state == 'L') {
                    Vertex(0, false);
                } else {
                    Dispatch(state, false);
                }
                continue;
            }
            Flush();
            if (textPending) lastText = text;
            textPending = false;
            elementLayer = layer;
            elementLayerName = layerName;
            Dispatch(recordClass, true);
            const int old = state;
            state = recordClass;
            if (old == 'L') return 1;
            if (old == 'T') return 2;
            if (recordClass == 'K') return 0;
        }
        return 0;
    }
};

}  // namespace

std::string Describe(const SeenVertex& v) {
    return " [" + std::to_string(v.type) + Bits(v.x) + Bits(v.y) + Bits(v.z) + " K=" + v.code +
           " S=" + std::to_string(v.symbol) + Bits(v.m) + Bits(v.r) + Bits(v.u) + "]";
}

std::string DescribeText(double x, double y, double z, const std::string& text, int d, int f, double h,
                         double u, int code) {
    return "text '" + text + "'" + Bits(x) + Bits(y) + Bits(z) + " " + std::to_string(d) + " " +
           std::to_string(f) + Bits(h) + Bits(u) + " " + std::to_string(code);
}

std::string DescribeLayer(int number, const std::string& name) {
    std::string text = " layer ";
    return text.append(std::to_string(number)).append("/").append(name);
}

std::string DescribeEnd(double scale, int relative, int complete) {
    std::string text = "end";
    return text.append(Bits(scale))
        .append(relative ? " relative" : " absolute")
        .append(complete ? " complete" : "");
}

std::vector<std::string> ReadNaively(const std::string& bytes, int orientation) {
    Reading reading;
    reading.lines = Lines(bytes);
    reading.orientation = orientation;
    reading.Header();
    std::vector<std::string> seen;

    while (const int kind = reading.Next()) {
        std::string element = "line";
        if (kind == 2) {
            const Text& t = reading.lastText;
            element = DescribeText(t.x, t.y, 0, t.text, t.d, t.f, t.h * (reading.scale / 1000), t.u, t.code);
        } else {
            for (const SeenVertex& vertex : reading.line) element += Describe(vertex);
        }
        seen.push_back(element + DescribeLayer(reading.elementLayer, reading.elementLayerName));
    }

    seen.push_back(DescribeEnd(reading.scale, reading.relative, reading.state == 'K'));
    return seen;
}

}  // namespace vemrado_test
