// Symbol codes, the symbol table, and the registration of symbols on first use.

#include <gtest/gtest.h>

#include "messages/message_table.h"
#include "shape_bytes.h"
#include "symbols/symbol_table.h"
#include "tables/symbology_files.h"

namespace vemrado_test {
namespace {

using vemrado::CKokesSymbols;

class Symbols : public testing::Test {
  protected:
    // Two shape files with strokes of 1, 2 and so on, and of 1001, 1002 and so on.
    Symbols() {
        std::string first = shapeMagic;
        std::string second = shapeMagic;
        for (int i = 1; i <= 255; ++i) first += Stroke(i);
        for (int i = 1; i <= 3; ++i) second += Stroke(1000 + i);
        files["A.ksh"] = first;
        files["b.ksh"] = second;
    }

    // Length of the stroke that a code is drawn with; 0 for a pattern without points, -1 for none.
    int Stroked(int32_t code) {
        const int32_t number = symbols.GetSymbolPattern(code);
        if (number == 0) return -1;
        const PatternElement* elements = ZrvPointPattern(number);
        return elements[0].code == '@' ? 0 : static_cast<int>(elements[1].x * 100 + 0.5);
    }

    SymbologyFiles files;
    vemrado::CollectedMessages messages;
    CKokesSymbols symbols{messages};
};

TEST_F(Symbols, CodesLeadToDrawings) {
    const struct {
        const char* codes;
        const char* table;
        int stroke;  // of code 1
    } cases[] = {
        {":S\n1 5", "A b\n5", 5},
        {":s\n1 5\n1 6", "A b\n5\n6", 5},
        {":L\n1 6\n:S\n* 1 7\n1 5 9\n:L\n1 8", "* list\n\nA\tb\n5 1,2 3 4.5 N", 5},
        {":S\n1 255", "A b\n255", 255},
        {":S\n1 256", "A b\n256", 1001},
        {":S\n1 300", "A b\n300", 0},
        {":S\n1 600", "A b\n600", -1},
        {":S\n1 0", "A b\n0", 0},
        {":S\n1 x", "A b\nx", 0},
        {":S\n1 -2147483648", "A b\n-2147483648", -1},
        {":S\n1 5", "A b\n6", 0},
        {":S\n1 5", "A b\n*5", 0},
        {":S\n1 5", "none b\n5", -1},
        {":S\n1 5", "", -1},
        {":S\n1", "A b\n5", -1},
        {":S\n1 0", "A b\n\"q\" B.KSH,2", 1002},
        {":S\n1 0", "A b\n\"q\" B.KSH , 2 3,4 5", 1002},
        {":S\n1 0", "A b\n\"q\" c.ksh,2", -1},
        {":S\n1 0", "A b\n\"q\" b.ksh,", 0},
        {":S\n1 0", "A b\n\"q\"", 0},
    };
    for (const auto& each : cases) {
        files["DKM1_3.TB"] = each.codes;
        files["WKOKES.SYM"] = each.table;
        symbols.ClearSymbols();
        ZrvClearPatterns();
        EXPECT_EQ(symbols.LoadSymbols(), 1);
        EXPECT_EQ(Stroked(1), each.stroke) << each.codes << " with " << each.table;
    }
}

TEST_F(Symbols, RegistersOnFirstUse) {
    files["DKM1_3.TB"] = ":S\n-7 1\n7 1\n-2147483648 2\n9 256";
    files["WKOKES.SYM"] = "A b b\n1\n2\n256";
    symbols.LoadSymbols();
    EXPECT_EQ(files.files.opens, 2) << "no shape file yet";
    const int32_t minus = symbols.GetSymbolPattern(-7);
    const int32_t plus = symbols.GetSymbolPattern(7);
    EXPECT_EQ(PointPatternText(minus), "S_7: 0,0,0 0.01,0,1 @");
    EXPECT_EQ(PointPatternText(symbols.GetSymbolPattern(-2147483648)), "S_2147483648: 0,0,0 0.02,0,1 @");
    const int opens = files.files.opens;
    EXPECT_EQ(symbols.GetSymbolPattern(-7), minus);
    EXPECT_EQ(symbols.GetSymbolPattern(7), plus);
    EXPECT_EQ(files.files.opens, opens) << "a shape file is read once";
    EXPECT_EQ(symbols.GetSymbolPattern(8), 0);
    EXPECT_EQ(symbols.FindSymbolFile("B.KsH"), 1);
    EXPECT_EQ(symbols.FindSymbolFile("b"), -1);
}

TEST_F(Symbols, OneUnreadableShapeFileIsReported) {
    files["DKM1_3.TB"] = ":S\n1 1\n2 256\n3 2";
    files["WKOKES.SYM"] = "gone foreign\n1\n2\n256";
    files["foreign.ksh"] = "text";
    symbols.LoadSymbols();
    const bool firstOfTheProcess = MessageBoxes::ofShapeFiles == 0;
    for (const int32_t code : {1, 2, 3, 1}) EXPECT_EQ(symbols.GetSymbolPattern(code), 0);
    EXPECT_EQ(files.boxes.count, firstOfTheProcess ? 1 : 0);
    if (firstOfTheProcess) {
        EXPECT_EQ(files.boxes.texts, SymbologyFiles::Path("gone.ksh") + ": " + vemrado::msgNoSymbolFile +
                                         "\n" + vemrado::msgSymbolsNotImported + "|");
    }
    files["gone.ksh"] = shapeMagic + Stroke(1);
    EXPECT_EQ(symbols.GetSymbolPattern(3), 0) << "not tried again";
}

}  // namespace
}  // namespace vemrado_test
