// Elements of a map copied out of its reading, a batch at a time, as the features of the layers need them.

#pragma once

#include <ogr_core.h>
#include <ogr_geometry.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "map/placement.h"

namespace vemrado::gdal {

// What a reader copies; the summary of a file wants all three.
enum class Content : unsigned { lines = 1, points = 2, texts = 4, everything = 7 };

// What stands beside the point of a line element.
struct VertexValues {
    double valueM = 1.0;
    double valueR = 0.0;
    double valueU = 0.0;
    int symbol = 0;     // 0: none
    uint32_t code = 0;  // K value: where it begins in the batch's strings, zero-terminated
    char type = 'P';    // C, K, L, P or R; '?' for any other letter
};

// A code as the symbology knows it.
struct CodeNumber {
    bool given = false;
    int number = 0;
};

struct StrokeRecord {
    size_t first = 0;  // its vertices in the batch
    size_t count = 0;
};

// A line, or the part of one that has one code.
struct LineRecord {
    size_t first = 0;  // its vertices in the batch
    size_t count = 0;
    size_t firstStroke = 0;
    size_t strokes = 0;
    int layer = 0;
    CodeNumber code;
};

// A line element of its own: it carries a symbol, or no stroke goes through it.
struct PointRecord {
    size_t vertex = 0;  // in the batch
    GIntBig line = 0;   // identifier of the line that it belongs to, 0 when that has no stroke
    int index = 0;      // place of the vertex in that line
    int layer = 0;
    // Of its symbol, where it has one.
    CodeNumber pen;         // the code that holds at it
    double rotation = 0.0;  // degrees counter-clockwise
    bool drawable = false;
};

struct TextRecord {
    OGRRawPoint point;
    double height = 0.0;  // in ground units
    double valueU = 0.0;
    double rotation = 0.0;  // degrees counter-clockwise
    uint32_t text = 0;      // where it begins in the batch's strings, in UTF-8 and zero-terminated
    int layer = 0;
    int code = 0;
    int valueD = 0;
    int valueF = 0;
    map::Anchor anchor;
    map::Face face;
    bool drawable = false;
};

// Exact: whether a value was given at all. No number is one too.
inline bool Differs(double value, double standard) {
    return !(value == standard);
}

struct Batch {
    std::vector<OGRRawPoint> vertices;
    std::vector<VertexValues> values;  // one for each vertex
    std::vector<StrokeRecord> strokes;
    std::vector<LineRecord> lines;
    std::vector<PointRecord> points;
    std::vector<TextRecord> texts;
    std::vector<char> strings;  // begins with an empty one
    size_t source = 0;          // number of the file that all of it comes from

    void Clear() {
        vertices.clear();
        values.clear();
        strokes.clear();
        lines.clear();
        points.clear();
        texts.clear();
        strings.assign(1, '\0');
    }
    const char* String(uint32_t place) const { return strings.data() + place; }
};

}  // namespace vemrado::gdal
