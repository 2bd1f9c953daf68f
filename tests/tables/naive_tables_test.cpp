// The module and the naive second reading agree on generated tables, on every prefix and on every change of a
// byte.

#include <gtest/gtest.h>

#include <random>

#include "messages/message_table.h"
#include "naive_tables.h"
#include "symbology_files.h"
#include "symbols/shape_bytes.h"
#include "tables/kokes_tables.h"

namespace vemrado_test {
namespace {

using FileTexts = std::map<std::string, std::string>;

class Generator {
  public:
    explicit Generator(uint32_t seed) : random(seed) {}

    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random() % limit); }
    std::string Pick(std::initializer_list<const char*> choices) {
        return choices.begin()[Below(static_cast<uint32_t>(choices.size()))];
    }
    std::string Number(int largest) {
        return std::to_string(static_cast<int>(Below(static_cast<uint32_t>(largest))));
    }
    std::string Blank() { return Pick({" ", " ", "\t", "  ", " \t "}); }
    std::string LineEnd() { return Pick({"\n", "\n", "\n", "\r\n", " \n", "\n\n", "\v\r\r\n"}); }
    std::string Value() {
        return Pick({"", "-", "+", "", ""}) + Number(400) +
               Pick({"", "", "", ".5", "e1", "x", ".", "99999999999"});
    }
    std::string Pair() {
        return Value() + Pick({",", ", ", " ,", " , ", "", ",,", "x,", ",1,"}) + Pick({"", "2", "3.5"});
    }

    FileTexts Files() {
        FileTexts files;
        files["WKOKES.COL"] = Colors();
        files["WKOKES.CAR"] = LineTypes();
        files["DKM1_3.TB"] = Codes();
        files["WKOKES.SYM"] = Symbols();
        files["a.ksh"] = Shapes();
        files["b.ksh"] = Shapes();
        return files;
    }

  private:
    std::string Colors() {
        std::string text;
        for (uint32_t sections = 1 + Below(4); sections > 0; --sections) {
            text += Pick({"[white]", "[White]", "[width]", "[width]", "[ white ]", "[x]", " [WHITE] "}) +
                    LineEnd();
            for (uint32_t lines = Below(20); lines > 0; --lines) {
                text += Pick({"", "", "", ";", "=", " "}) + Value() + Pick({"=", "=", " = ", "", "=="});
                for (uint32_t fields = Below(5); fields > 0; --fields)
                    text += Value() + Pick({",", ", ", ",,"});
                text += LineEnd();
            }
        }
        return text;
    }
    std::string LineTypes() {
        std::string text;
        for (uint32_t lines = Below(40); lines > 0; --lines) {
            text += Pick({"", "", "", "", "*", " "}) + Pick({"", "", "-"}) + Number(12);
            text += Blank() + Pair() + Blank() + Pick({"", "-", "-"}) + Number(12);
            for (uint32_t fields = Below(6); fields > 0; --fields) text += Blank() + Pair();
            text += LineEnd();
        }
        return text;
    }
    std::string Codes() {
        std::string text;
        for (uint32_t sections = Below(5); sections > 0; --sections) {
            text += Pick({":L", ":l", ":S", ":s", ":X", ": L", ":L x", "L"}) + LineEnd();
            for (uint32_t lines = Below(30); lines > 0; --lines) {
                text += Pick({"", "", "", "", "*", ":", "-", " "}) + Number(20) + Blank() +
                        Pick({"", "", "-"}) + Number(12) + Pick({"", "", " 7", "\t"}) + LineEnd();
            }
        }
        return text;
    }
    std::string Symbols() {
        std::string text =
            Pick({"", "* x\n"}) + Pick({"a b", "b\ta b", "a", "c b a", "a ", "B c"}) + LineEnd();
        for (uint32_t lines = Below(20); lines > 0; --lines) {
            text += Pick({"", "", "", "*", "\"", "-"}) + Number(12) + Pick({"", "", " "});
            if (Below(4) == 0) text += Pick({" b.ksh,2", "\" A.KSH , 3", " ,4", " b.ksh,"});
            if (Below(4) == 0) text = text + " " + Pair() + " " + Pair() + " 1.5 N";
            text += LineEnd();
        }
        return text;
    }
    std::string Shapes() {
        std::string bytes = Below(10) == 0 ? "C\x4A\xB1\x29" : shapeMagic;
        for (uint32_t records = Below(12); records > 0; --records) {
            std::vector<ShapePart> parts(Below(4));
            for (ShapePart& part : parts) {
                part.kind = Below(4);
                part.points.resize(Below(6));
                for (auto& [x, y] : part.points)
                    x = static_cast<int>(Below(4)) * 100 - 200, y = static_cast<int>(Below(3));
            }
            std::string value = DrawingValue(parts);
            if (Below(5) == 0) value.resize(value.size() + Below(9) - 4);
            bytes += Below(6) == 0 ? Pick({"HEIGHT%=12", "x!=\3\1", "n~=xx", "N-"}) : ShapeRecord(value);
        }
        return bytes;
    }

    std::mt19937 random;
};

std::string Answer(int code, int result, uint32_t colour) {
    char text[64];
    std::snprintf(text, sizeof text, "\n%d %d %X ", code, result, colour);
    return text;
}

// What the two readings have of everything that a host can ask for.
std::string OfModule(const FileTexts& texts) {
    SymbologyFiles files;
    for (const auto& [name, text] : texts) files[name] = text;
    vemrado::CKokesTables tables;
    EXPECT_EQ(tables.Load(1), 1);
    std::string answers = files.boxes.texts;
    for (int code = -20; code < 20; ++code) {
        uint32_t colour = 0;
        int32_t pattern = 0;
        const int result = tables.GetLineStyle(code, colour, pattern);
        answers += Answer(code, result, colour);
        answers += LinePatternText(pattern);
        answers.append("; ").append(PointPatternText(tables.GetSymbolPattern(code)));
    }
    return answers;
}

std::string OfNaiveReading(const FileTexts& texts) {
    const NaiveTables naive(texts);
    std::string answers;
    for (const char letter : naive.missing) {
        const bool isColor = letter == 'c' || letter == 'w';
        answers += SymbologyFiles::Path(isColor ? "WKOKES.COL" : "DKM1_3.TB") + ": " +
                   (letter == 'c'   ? vemrado::msgNoColorTable
                    : letter == 'w' ? vemrado::msgNoWidthTable
                    : letter == 'L' ? vemrado::msgNoLineCodeTable
                                    : vemrado::msgNoSymbolCodeTable) +
                   "\n";
    }
    if (!answers.empty()) answers += "|";
    for (int code = -20; code < 20; ++code) {
        const NaiveTables::LineStyle style = naive.Style(code);
        answers += Answer(code, style.result, style.colour);
        answers += style.pattern + "; " + naive.Symbol(code);
    }
    return answers;
}

// The one warning of an unreadable shape file in the life of the program comes with these.
const FileTexts unreadableShapeFile = {{"DKM1_3.TB", ":S\n1 1"}, {"WKOKES.SYM", "gone"}};

TEST(NaiveTables, AgreeOnGeneratedTables) {
    OfModule(unreadableShapeFile);
    for (uint32_t seed = 0; seed < 1500; ++seed) {
        const FileTexts files = Generator(seed).Files();
        ASSERT_EQ(OfModule(files), OfNaiveReading(files)) << seed;
    }
}

// A complete symbology of a few lines, each of whose files is damaged in turn.
class DamagedTables : public testing::TestWithParam<const char*> {};

TEST_P(DamagedTables, AgreeWithTheNaiveReading) {
    OfModule(unreadableShapeFile);
    FileTexts files = {
        {"WKOKES.COL", "[white]\n1=1,2\r\n0=9\n[width]\n1=1,.5\n"},
        {"WKOKES.CAR", "* c\n1 1,2 -3\n2 0 1\n-3 1 .5\n"},
        {"DKM1_3.TB", ":L\n1 1\n2 2\n:S\n1 2\n2 1\n3 257\n"},
        {"WKOKES.SYM", "a b\n1 2,3 4 5 N\n2\n257\n"},
        {"a.ksh", shapeMagic + "HEIGHT%=d" + '\0' + Stroke(100) +
                      Drawing({{0, {{1, 2}}}, {3, {{3, 4}, {5, 6}}}}) + "x~="},
        {"b.ksh", shapeMagic + Stroke(7) + Stroke(8)},
    };
    std::string& victim = files.at(GetParam());
    const std::string whole = victim;
    for (size_t length = 0; length <= whole.size(); ++length) {
        victim = whole.substr(0, length);
        ASSERT_EQ(OfModule(files), OfNaiveReading(files)) << length << " bytes";
    }
    for (size_t i = 0; i < whole.size(); ++i) {
        for (int byte = 0; byte < 256; ++byte) {
            victim = whole;
            victim[i] = static_cast<char>(byte);
            ASSERT_EQ(OfModule(files), OfNaiveReading(files)) << "byte " << byte << " at " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Each, DamagedTables,
                         testing::Values("WKOKES.COL", "WKOKES.CAR", "DKM1_3.TB", "WKOKES.SYM", "a.ksh"));

}  // namespace
}  // namespace vemrado_test
