// The symbology as the importer asks for it: load, line styles, layers, boxes.

#include "tables/kokes_tables.h"

#include <gtest/gtest.h>

#include "messages/message_table.h"
#include "symbology_files.h"

namespace vemrado_test {
namespace {

using vemrado::CKokesTables;

class KokesTables : public testing::Test {
  protected:
    // Files of one line definition (9) that the VKM code 1 leads to.
    void LoadLineTypes(const std::string& lineTypes) {
        files["WKOKES.COL"] = "[white]\n0=1,0,0\n3=3,0,0\n[width]\n";
        files["WKOKES.CAR"] = lineTypes;
        files["DKM1_3.TB"] = ":L\n1 9\n";
        ASSERT_EQ(tables.Load(0), 1);
    }

    // Result, colour in hexadecimal and pattern of a code.
    std::string Style(int32_t code) {
        uint32_t colour = 77;
        int32_t pattern = 77;
        const int result = tables.GetLineStyle(code, colour, pattern);
        char text[64];
        std::snprintf(text, sizeof text, "%d %X ", result, colour);
        return std::string(text).append(LinePatternText(pattern));
    }

    SymbologyFiles files;
    CKokesTables tables;
};

TEST_F(KokesTables, LineTypesAreDrawnInColourAndDashes) {
    const struct {
        const char* lines;
        const char* style;
    } cases[] = {
        {"9 3,5 -2\n-2 1.5 0.5 0.25", "1 3 L_2: 1.5,0,1 0.5,0,0 0.25,0,1 @"},
        {"-2 4 \n 9\t3 -2 9,9 1 2 3.5 4.5 surplus", "1 3 L_2: 4,0,1 @"},
        {"9 3,5 -2", "1 3 "},
        {"9 3 2\n-2 1", "1 3 "},
        {"9", "1 1 "},
        {"9 3,", "1 1 "},
        {"9 ,3 -2\n-2 7", "1 3 L_2: 7,0,1 @"},
        {"9 -1 -2\n-2", "1 0 L_2: @"},
        {"9 3 -2\n-2 1\n-2 x 8", "1 3 L_2: 0,0,1 8,0,0 @"},
        {"9 3 -2\n9 0", "1 1 "},
        {"9 3 -300\n-300 1", "1 3 L_300: 1,0,1 @"},
        {"9 3 -16777216\n-16777216 1", "1 3 "},
        {"9 3 -2147483648\n-2147483648 1", "1 3 "},
        {"* 9 3\nx 3\n0 3\n8 3", "0 0 "},
        {"9 300000 -2", "1 0 "},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.lines);
        LoadLineTypes(each.lines);
        EXPECT_EQ(Style(1), each.style);
        EXPECT_EQ(Style(2), "0 0 ");
        ZrvClearPatterns();
    }
    EXPECT_EQ(files.boxes.texts, "");
}

TEST_F(KokesTables, LongPatternsAreCut) {
    std::string lines = "9 3 -1\n-1";
    for (int i = 0; i < 1500; ++i) lines += " 2";
    LoadLineTypes(lines);
    const std::string text = Style(1);
    EXPECT_EQ(std::count(text.begin(), text.end(), '2'), 1001);
}

TEST_F(KokesTables, CodeSectionsFollowTheirRules) {
    const struct {
        const char* text;
        char found;  // '1': line type 9 for code 1
    } cases[] = {
        {":l\n1 9", '1'},           {"junk\n1 8\n:S\n1 8\n  :L  \n\n* 1 8\n 1\t 9 8\n1 8\n:S\n", '1'},
        {":L comment\n1 9\n", '0'}, {":L\n:S\n1 9", '0'},
        {":L\n1\n1 9", '1'},        {":L\n1 0\n1 9", '0'},
        {":L\n1 8\n:L\n1 9", '0'},  {":L\n1x 9.9", '1'},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        files["DKM1_3.TB"] = each.text;
        files["WKOKES.CAR"] = "9";
        tables.Load(0);
        EXPECT_EQ(Style(1).front(), each.found);
    }
}

TEST_F(KokesTables, EveryProblemStandsInOneBox) {
    ASSERT_EQ(tables.Load(1), 1);
    EXPECT_EQ(files.boxes.count, 1);
    size_t at = 0;
    for (const char* name : {"WKOKES.COL", "WKOKES.CAR", "DKM1_3.TB", "DKM1_3.TB", "WKOKES.SYM"}) {
        at = files.boxes.texts.find(name, at);
        ASSERT_NE(at, std::string::npos) << name << " in " << files.boxes.texts;
        ++at;
    }
    EXPECT_NE(files.boxes.texts.find(std::string("\n") + vemrado::msgSymbolsNotImported + "\n|"),
              std::string::npos);

    using namespace vemrado;
    const struct {
        const char* colors;
        const char* codes;
        std::string box;
    } cases[] = {
        {"[width]\n1=1,2", ":S\n:L", SymbologyFiles::Path("WKOKES.COL") + ": " + msgNoColorTable + "\n|"},
        {"[white]\n1=1,2\n[ width ]", "",
         SymbologyFiles::Path("WKOKES.COL") + ": " + msgNoWidthTable + "\n" +
             SymbologyFiles::Path("DKM1_3.TB") + ": " + msgNoLineCodeTable + "\n" +
             SymbologyFiles::Path("DKM1_3.TB") + ": " + msgNoSymbolCodeTable + "\n|"},
        {"[Width]\n  [WHITE]  ", ":l\n:s", ""},
    };
    files["WKOKES.CAR"] = files["WKOKES.SYM"] = "";
    for (const auto& each : cases) {
        files.boxes.texts.clear();
        files["WKOKES.COL"] = each.colors;
        files["DKM1_3.TB"] = each.codes;
        tables.Load(1);
        EXPECT_EQ(files.boxes.texts, each.box);
    }
}

TEST_F(KokesTables, ReadErrorsKeepWhatWasRead) {
    std::string codes = ":L\n1 9\n";
    while (codes.size() < 3'000'000) codes += "2 8 and a long remark that fills the file\n";
    LoadLineTypes("9 3");
    files["DKM1_3.TB"] = codes;
    files.files.readLimit = 2'500'000;
    tables.Load(0);
    EXPECT_EQ(Style(1), "1 3 ");
    EXPECT_EQ(files.boxes.count, 1);
    EXPECT_EQ(files.boxes.texts.find(SymbologyFiles::Path("DKM1_3.TB: ")), 0u) << files.boxes.texts;
}

TEST_F(KokesTables, LayersTakeTheStyleOfTheirCodes) {
    const auto layerStyle = [this](int32_t layer) {
        uint32_t colour = 77;
        int32_t pattern = 0;
        const int result = tables.GetLayerStyle(layer, colour, pattern);
        return std::to_string(result) + " " + std::to_string(colour) + " " + LinePatternText(pattern);
    };
    EXPECT_EQ(layerStyle(1), "0 77 ");
    tables.SetLayerValue(7, 3);
    EXPECT_EQ(tables.GetLayerValue(3), 0);

    files["WKOKES.COL"] = "[white]\n3=3,0,0\n[width]";
    files["WKOKES.CAR"] = "9 3 -4\n8 3\n-4 1 2";
    files["DKM1_3.TB"] = ":L\n21900 9\n1029 8\n1030 7";
    tables.Load(0);
    EXPECT_STREQ(ZrvLinePatternName(1), "L_4");
    EXPECT_EQ(ZrvLinePatternName(2), nullptr);
    const char* const expected[] = {"0 77 ", "1 3 L_4: 1,0,1 2,0,0 @",
                                    "1 0 ",  "1 0 ",
                                    "1 0 ",  "1 0 ",
                                    "1 0 ",  "1 3 ",
                                    "1 0 ",  "1 0 ",
                                    "1 0 ",  "1 0 ",
                                    "0 77 "};
    for (int32_t layer = 0; layer <= 12; ++layer) EXPECT_EQ(layerStyle(layer), expected[layer]) << layer;

    for (const int32_t layer : {-1, 0, 1, 11, 12}) {
        tables.SetLayerValue(100 + layer, layer);
        EXPECT_EQ(tables.GetLayerValue(layer), layer == 1 || layer == 11 ? 100 + layer : 0);
    }
    tables.Load(0);
    EXPECT_EQ(tables.GetLayerValue(1), 0) << "a second load starts anew";
}

TEST_F(KokesTables, SecondLoadBehavesLikeTheFirst) {
    LoadLineTypes("9 3 -2\n-2 1");
    EXPECT_EQ(Style(1), "1 3 L_2: 1,0,1 @");
    for (const char* name : {"WKOKES.COL", "WKOKES.CAR", "DKM1_3.TB"})
        files.files.Remove(SymbologyFiles::Path(name));
    tables.Load(0);
    EXPECT_EQ(Style(1), "0 0 ");
    EXPECT_EQ(files.boxes.count, 1);
}

}  // namespace
}  // namespace vemrado_test
