// Elements of a VKM file copied out of the module, a batch at a time, as the features of the three layers
// need them.

#pragma once

#include <ogr_api.h>
#include <ogr_core.h>
#include <ogr_geometry.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vemrado::gdal {

// What a reader copies; the summary of a file wants all three.
enum class Content : unsigned { lines = 1, points = 2, texts = 4, everything = 7 };

// What stands beside the point of a line element.
struct VertexValues {
    double valueM = 1.0;
    double valueR = 0.0;
    double valueU = 0.0;
    int symbol = 0;        // 0: none
    uint32_t code = 0;     // K value: where it begins in the batch's strings, zero-terminated
    char type = '?';       // C, K, L, P or R; '?' for any other letter
    bool begins = false;   // a new stroke
    bool stroked = false;  // part of a stroke of two points or more: it lies on the line's geometry
};

struct LineRecord {
    size_t first = 0;  // its vertices in the batch
    size_t count = 0;
    int layer = 0;
    int strokes = 0;  // strokes of two points or more; 0: a line of lone points only
};

// A line element of its own: it carries a symbol, or no stroke goes through it.
struct PointRecord {
    size_t vertex = 0;  // in the batch
    GIntBig line = 0;   // identifier of the line that it belongs to, 0 when that has no stroke
    int index = 0;      // place of the vertex in its line
    int layer = 0;
    uint32_t code =
        0;  // K value of its vertex or the last one before it in the line: the pen it is drawn with
};

struct TextRecord {
    OGRRawPoint point;
    double height = 0.0;
    double rotation = 0.0;
    uint32_t text = 0;  // where it begins in the batch's strings, in UTF-8 and zero-terminated
    int layer = 0;
    int code = 0;
    int valueD = 0;
    int valueF = 0;
};

// Exact: whether a value was given at all. No number is one too.
inline bool Differs(double value, double standard) {
    return !(value == standard);
}

struct Batch {
    std::vector<OGRRawPoint> vertices;
    std::vector<VertexValues> values;  // one for each vertex
    std::vector<LineRecord> lines;
    std::vector<PointRecord> points;
    std::vector<TextRecord> texts;
    std::vector<char> strings;  // begins with an empty one
    size_t source = 0;          // number of the file that all of it comes from

    void Clear() {
        vertices.clear();
        values.clear();
        lines.clear();
        points.clear();
        texts.clear();
        strings.assign(1, '\0');
    }
    const char* String(uint32_t place) const { return strings.data() + place; }
};

// Walks over the strokes of a line that have two points or more: visit(first, count) with places in the
// batch. Type P starts a new stroke; every other letter is a straight segment from the point before.
template <typename Visit>
void ForEachStroke(const Batch& batch, const LineRecord& line, Visit visit) {
    const size_t end = line.first + line.count;
    for (size_t begin = line.first; begin < end;) {
        size_t next = begin + 1;
        while (next < end && !batch.values[next].begins) ++next;
        if (next - begin > 1) visit(begin, next - begin);
        begin = next;
    }
}

}  // namespace vemrado::gdal
