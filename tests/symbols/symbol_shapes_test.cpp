// Shape files: what is a drawing, what is skipped, and what a damaged file leaves.

#include "symbols/symbol_shapes.h"

#include <gtest/gtest.h>

#include "memory_files.h"
#include "shape_bytes.h"
#include "symbols/point_pattern.h"

namespace vemrado_test {
namespace {

using namespace vemrado;

// The drawings as text, "|" behind each: parts as kind and points, "0(0,0)(100,0)".
std::string Drawings(const CSymbolShapes& shapes) {
    std::string text;
    for (int i = 0; i < shapes.count; ++i) {
        const CSymbolShape& drawing = shapes.records[i];
        const uint8_t* raw = drawing.parts + 2 * drawing.partCount;
        for (int part = 0; part < drawing.partCount; ++part) {
            const uint16_t word = ReadWord(drawing.parts + 2 * part);
            text += std::to_string(word >> partKindShift);
            for (int n = word & partPointMask; n > 0; --n, raw += 4) {
                char point[32];
                std::snprintf(point, sizeof point, "(%d,%d)", static_cast<int16_t>(ReadWord(raw)),
                              static_cast<int16_t>(ReadWord(raw + 2)));
                text += point;
            }
        }
        text += "|";
    }
    return text;
}

std::string Load(const std::string& bytes, int* height = nullptr) {
    MemoryFiles files;
    files["a.ksh"] = bytes;
    CSymbolShapes shapes;
    LoadShapeFile(shapes, "a.ksh");
    if (height != nullptr) *height = shapes.height;
    EXPECT_EQ(files.openFiles, 0);
    return Drawings(shapes);
}

TEST(SymbolShapes, DocumentedExample) {
    const std::string bytes(
        "\xC4\x4A\xB1\x29HEIGHT%=\x64\x00SYM$=\x14\x00\x00\x00\x00\x00\x01\x00\x03\x00"
        "\x00\x00\x00\x00\x64\x00\x00\x00\x64\x00\x64\x00",
        41);
    int height = 0;
    EXPECT_EQ(Load(bytes, &height), "0(0,0)(100,0)(100,100)|");
    EXPECT_EQ(height, 100);
}

TEST(SymbolShapes, ReadsRecordsAndSkipsOthers) {
    const std::string a = Stroke(1);
    const std::string b = Stroke(2);
    const std::string both = "0(0,0)(1,0)|0(0,0)(2,0)|";
    const std::string one = "0(0,0)(1,0)|";
    const std::string six = "123456";
    const std::string name254(254, 'x');
    const struct {
        const char* what;
        std::string records;
        std::string drawings;
    } cases[] = {
        {"no records", "", ""},
        {"height between", a + "HEIGHT%=\x05" + '\0' + b, both},
        {"every other type",
         "n%=12n&=1234n#=12345678n@=" + Long(6) + six + a + "n!=" + Long(6) + six + "n~=" + Long(6) +
             Long(99) + six + b,
         both},
        {"other case or type", "sym$=" + Word(6) + six + a + "SYM@=" + Long(6) + six + b, both},
        {"letters of Windows-1250", "\x8A.\xFE_9$=" + Word(2) + "12" + a, one},
        {"no name", "$=" + Word(2) + "12" + a, one},
        {"a later type character counts", "n%x$=" + Word(2) + "12" + a, one},
        {"longest name", name254 + "$=" + Word(2) + "12" + a, one},
        {"256 bytes without a type", a + std::string(256, 'x') + b, one},
        {"foreign byte ends the records", a + "n-%=12" + b, one},
        {"zero byte ends the records", a + "n" + '\0' + "=" + b, one},
        {"no type character", a + "n=" + b, one},
        {"length cut", a + "SYM$=\x05", one},
        {"value beyond the end", a + "n@=" + Long(0xFFFFFFFF) + b, one},
        {"no parts", Drawing({}) + a, "|" + one},
        {"empty part and kinds", Drawing({{3, {}}, {2, {{-1, -32768}}}, {1, {{5, 6}}}}),
         "32(-1,-32768)1(5,6)|"},
    };
    for (const auto& each : cases) EXPECT_EQ(Load(shapeMagic + each.records), each.drawings) << each.what;
    EXPECT_EQ(Load("\xC4\x4A\xB1\x28" + a), "");
    EXPECT_EQ(Load("\xC4\x4A\xB1"), "");
    EXPECT_EQ(Load(""), "");
}

TEST(SymbolShapes, DrawingsThatDoNotFitKeepTheirNumber) {
    const std::string value = DrawingValue({{0, {{0, 0}, {7, 0}}}});
    const std::string whole = "0(0,0)(7,0)|";
    const std::string between = "0(0,0)(1,0)|";
    for (size_t length = 0; length <= value.size() + 9; ++length) {
        std::string cut = value + "surplus--";
        cut.resize(length);
        const std::string drawings = Load(shapeMagic + Stroke(1) + ShapeRecord(cut) + Stroke(1));
        EXPECT_EQ(drawings, between + (length < value.size() ? "|" : whole) + between) << length;
    }
    const std::string many = ShapeRecord(Word(0) + Word(0) + Word(0xFFFF) + std::string(60000, '\xFF'));
    EXPECT_EQ(Load(shapeMagic + Stroke(1) + many + Stroke(1)), between + "|" + between);
}

TEST(SymbolShapes, WhatTheFileBreaksOffIsZero) {
    const std::string bytes = shapeMagic + Stroke(1) + Drawing({{1, {{5, 6}, {7, 8}}}});
    const char* const rest[] = {"1(5,6)(7,8)|", "1(5,6)(7,0)|", "1(5,6)(7,0)|", "1(5,6)(0,0)|",
                                "1(5,6)(0,0)|", "1(5,0)(0,0)|", "1(5,0)(0,0)|", "1(0,0)(0,0)|"};
    for (size_t i = 0; i < std::size(rest); ++i) {
        EXPECT_EQ(Load(bytes.substr(0, bytes.size() - 1 - i)), std::string("0(0,0)(1,0)|") + rest[i]) << i;
    }
    EXPECT_EQ(Load(bytes.substr(0, bytes.size() - 12)), "0(0,0)(1,0)||") << "part count cut";
}

TEST(SymbolShapes, AnInputErrorLeavesNothing) {
    std::string bytes = shapeMagic;
    for (int i = 0; i < 3000; ++i) bytes += Stroke(i);
    MemoryFiles files;
    files["a.ksh"] = bytes;
    int failed = 0;
    CSymbolShapes shapes;
    do {
        files.reads = 0;
        ++files.failingRead;
        LoadShapeFile(shapes, "a.ksh");
        failed += shapes.count == 0;
    } while (shapes.count == 0);
    EXPECT_GT(failed, 10);
    EXPECT_EQ(shapes.count, 3000);
    EXPECT_EQ(failed, files.failingRead - 1);
}

TEST(SymbolShapes, TakesMoreDrawingsThanItsCountHolds) {
    std::string bytes = shapeMagic;
    for (int i = 0; i < 66000; ++i) bytes += Drawing({});
    MemoryFiles files;
    files["a.ksh"] = bytes;
    CSymbolShapes shapes;
    EXPECT_EQ(LoadShapeFile(shapes, "a.ksh").count, 65535);
}

// The records of a drawing's pattern, "x,y,code" each.
std::string Pattern(const std::vector<ShapePart>& parts) {
    MemoryFiles files;
    files["a.ksh"] = shapeMagic + Drawing(parts);
    CSymbolShapes shapes;
    CPointPattern pattern;
    DrawSymbol(LoadShapeFile(shapes, "a.ksh"), 1, pattern, 0, 0);
    pattern.Terminate();
    std::string text;
    for (const PatternElement* element = pattern.Elements(); element->code != '@'; ++element) {
        char record[80];
        std::snprintf(record, sizeof record, "%.10g,%.10g,%d ", element->x, element->y, element->code);
        text += record;
    }
    return text;
}

TEST(PointPattern, DrawsMovesAndStrokes) {
    EXPECT_EQ(Pattern({{0, {{3, 4}}}}), "0.03,0.04,0 0.01,0,1 ");
    EXPECT_EQ(Pattern({{0, {{0, 0}, {100, 0}, {100, 100}}}}), "0,0,0 1,0,1 0,1,1 ");
    EXPECT_EQ(Pattern({{1, {{5, 5}, {5, 5}}}}), "0.05,0.05,0 0.01,0,1 ");
    EXPECT_EQ(Pattern({{0, {{0, 0}, {1, 0}}}, {3, {{1, 0}, {1, 2}}}}), "0,0,0 0.01,0,1 0,0.02,1 ");
    EXPECT_EQ(Pattern({{2, {{9, 9}, {8, 8}}}, {0, {}}, {1, {{1, 1}, {2, 1}}}}), "0.01,0.01,0 0.01,0,1 ");
    EXPECT_EQ(Pattern({}), "");

    std::vector<std::pair<int, int>> points;
    for (int i = 0; i < 1500; ++i) points.emplace_back(i, 0);
    for (const size_t count : {1000u, 1001u, 1002u, 1500u}) {
        points.resize(count);
        const std::string text = Pattern({{0, points}});
        EXPECT_EQ(std::count(text.begin(), text.end(), ' '),
                  static_cast<ptrdiff_t>(std::min<size_t>(count, 1001)));
        points.resize(1500, {7, 7});
    }
}

}  // namespace
}  // namespace vemrado_test
