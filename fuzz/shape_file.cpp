// Shape files: the drawings against the naive second reading, and the patterns that are drawn of them.

#include <string>

#include "memory_files.h"
#include "symbols/point_pattern.h"
#include "symbols/symbol_shapes.h"
#include "tables/naive_tables.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

using vemrado_test::NaiveShapes;

void ComparePart(const uint8_t* raw, const NaiveShapes::Part& part) {
    for (const auto& [x, y] : part.points) {
        Require(static_cast<int16_t>(vemrado::ReadWord(raw)) == x, "a point's x");
        Require(static_cast<int16_t>(vemrado::ReadWord(raw + 2)) == y, "a point's y");
        raw += 4;
    }
}

void CompareDrawing(const vemrado::CSymbolShape& drawing, const NaiveShapes::Drawing& expected) {
    Require(drawing.partCount == expected.size(), "the number of parts");
    const uint8_t* raw = drawing.parts + 2 * expected.size();
    for (size_t i = 0; i < expected.size(); ++i) {
        const uint16_t word = vemrado::ReadWord(drawing.parts + 2 * i);
        const size_t count = word & vemrado::partPointMask;
        Require(count == expected[i].points.size(), "the number of points");
        Require(word >> vemrado::partKindShift == expected[i].kind, "the kind of a part");
        ComparePart(raw, expected[i]);
        raw += 4 * count;
    }
}

void DrawAll(vemrado::CSymbolShapes& shapes) {
    static vemrado::CPointPattern pattern;
    for (int32_t number = 0; number <= shapes.count + 1; ++number) {
        pattern.ClearPattern();
        vemrado::DrawSymbol(shapes, number, pattern, 32767, -32768);
        pattern.ClearPattern();
        vemrado::DrawSymbol(shapes, number, pattern, 0, 0);
        pattern.Terminate();
        const PatternElement* element = pattern.Elements();
        int32_t count = 0;
        while (element[count].code != '@') ++count;
        Require(count <= 1001, "a pattern's length");
        Require(count == 0 || (number >= 1 && number <= shapes.count), "no pattern of no drawing");
        if (count > 0) Require(element[0].code == 0, "a pattern begins with a move");
    }
}

void CompareShapes(std::string_view bytes) {
    vemrado_test::MemoryFiles files;
    files["a.ksh"] = bytes;
    const NaiveShapes naive = vemrado_test::NaiveShapeFile(std::string(bytes));
    vemrado::CSymbolShapes shapes;
    vemrado::LoadShapeFile(shapes, "a.ksh");
    Require(shapes.count == naive.drawings.size(), "the number of drawings");
    if (shapes.count > 0) Require(shapes.height == naive.height, "the height");
    for (size_t i = 0; i < naive.drawings.size(); ++i) CompareDrawing(shapes.records[i], naive.drawings[i]);
    DrawAll(shapes);
    Require(files.openFiles == 0, "every file is closed");
}

const Target target("shape_file", CompareShapes);

}  // namespace
}  // namespace vemrado_fuzz
