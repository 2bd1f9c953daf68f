// The symbology tables against the naive second reading: one target for each table, with the others fixed.

#include <algorithm>
#include <string>

#include "messages/collected_messages.h"
#include "messages/message_table.h"
#include "symbols/shape_bytes.h"
#include "tables/kokes_tables.h"
#include "tables/naive_tables.h"
#include "tables/symbology_files.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

using FileTexts = std::map<std::string, std::string>;

// A number of so many digits makes a table of megabytes, which says no more than a short one. Numbers of ten
// digits and more are past the limits and stay; zeros in front do not count.
bool HasHeavyNumber(std::string_view bytes) {
    size_t digits = 0;
    for (const char byte : bytes) {
        if (byte >= '0' && byte <= '9') {
            if (byte != '0' || digits > 0) ++digits;
        } else {
            if (digits >= 4 && digits <= 9) return true;
            digits = 0;
        }
    }
    return digits >= 4 && digits <= 9;
}

// The other tables are as small as the table in question allows, for they are read in every run.
FileTexts FixedTexts() {
    FileTexts texts;
    texts["WKOKES.COL"] = "[white]\n1=1,2,3\n2=4,5,6\n[width]\n1=1,.5\n";
    texts["WKOKES.CAR"] = "1 1,2 -3\n-3 1 .5\n";
    texts["DKM1_3.TB"] = ":L\n1 1\n2 2\n3 3\n4 4\n:S\n";
    texts["WKOKES.SYM"] = "";
    return texts;
}

void AddSymbols(FileTexts& texts) {
    using namespace vemrado_test;
    texts["WKOKES.COL"] = "[white]\n[width]\n";
    texts["WKOKES.CAR"] = "1 1,2 -3\n";
    texts["DKM1_3.TB"] = ":L\n:S\n1 1\n2 2\n3 257\n4 0\n5 -1\n";
    texts["WKOKES.SYM"] = "a b\n1 2,3 4 5 N\n2\n257\n";
    texts["a.ksh"] = shapeMagic + Stroke(100) + Drawing({{0, {{1, 2}}}, {3, {{3, 4}, {5, 6}}}});
    texts["b.ksh"] = shapeMagic + Stroke(7) + Stroke(8);
}

// What a table decides is looked at, by every code that the fixed tables name and some beside them.
enum class Looked { lines, symbols, both };

void CompareStyle(vemrado::CKokesTables& tables, const vemrado_test::NaiveTables& naive, int32_t code) {
    uint32_t colour = 77;
    int32_t pattern = 77;
    const int result = tables.GetLineStyle(code, colour, pattern);
    const vemrado_test::NaiveTables::LineStyle expected = naive.Style(code);
    Require(result == expected.result && colour == expected.colour, "a line style's colour");
    Require(vemrado_test::LinePatternText(pattern) == expected.pattern, "a line style's pattern");
}

void CompareStyles(vemrado::CKokesTables& tables, const vemrado_test::NaiveTables& naive, Looked looked) {
    for (int32_t code = -1; code < 7; ++code) {
        if (looked != Looked::symbols) CompareStyle(tables, naive, code);
        if (looked == Looked::lines) continue;
        Require(vemrado_test::PointPatternText(tables.GetSymbolPattern(code)) == naive.Symbol(code),
                "a symbol");
    }
}

void CompareWarnings(const std::string& box, const std::string& missing) {
    const struct {
        char section;
        const char* text;
    } warnings[] = {{'c', vemrado::msgNoColorTable},
                    {'w', vemrado::msgNoWidthTable},
                    {'L', vemrado::msgNoLineCodeTable},
                    {'S', vemrado::msgNoSymbolCodeTable}};
    for (const auto& [section, text] : warnings) {
        const bool warned = box.find(text) != std::string::npos;
        Require(warned == (missing.find(section) != std::string::npos), "a missing section's warning");
    }
}

void Compare(const FileTexts& texts, Looked looked) {
    vemrado_test::SymbologyFiles files;
    for (const auto& [name, text] : texts) files[name] = text;
    {
        vemrado::CKokesTables tables;
        const vemrado_test::NaiveTables naive(texts);
        Require(tables.Load(1) == 1, "a load comes to its end");
        CompareWarnings(files.boxes.texts, naive.missing);
        CompareStyles(tables, naive, looked);
    }
    Require(files.files.openFiles == 0, "every file is closed");
}

// Bytes as one table among the fixed ones.
void CompareAs(const char* name, Looked looked, std::string_view bytes) {
    if (HasHeavyNumber(bytes)) return;
    FileTexts texts = FixedTexts();
    if (looked != Looked::lines) AddSymbols(texts);
    texts[name] = bytes;
    Compare(texts, looked);
}

// The colour table by itself: every colour and width.
void CompareColors(std::string_view bytes) {
    if (HasHeavyNumber(bytes)) return;
    FileTexts texts = FixedTexts();
    texts["WKOKES.COL"] = bytes;
    vemrado_test::MemoryFiles files;
    vemrado_test::MessageBoxes boxes;
    files["colors"] = bytes;
    const vemrado_test::NaiveTables naive(texts);
    vemrado::CollectedMessages warnings;
    vemrado::CKokesColorTable table(warnings);
    const int complete = table.ReadColorFile("colors");
    Require(complete == (naive.missing.find_first_of("cw") == std::string::npos), "both sections are there");
    const auto colors = static_cast<int32_t>(naive.colors.size());
    for (int32_t i = 0; i < colors; ++i) {
        Require(table.GetColor(i) == naive.colors[static_cast<size_t>(i)], "a colour");
    }
    const auto widths = static_cast<int32_t>(naive.widths.size());
    for (int32_t i = 0; i < widths; ++i) {
        const double width = naive.widths[static_cast<size_t>(i)];
        Require(table.GetWidth(i) == width || width != width, "a width");
    }
    Require(table.GetColor(-1) == 0 && table.GetColor(colors) == 0, "no colour outside the table");
    Require(table.GetWidth(-1) == 0 && table.GetWidth(widths) == 0, "no width outside the table");
    Require(files.openFiles == 0, "every file is closed");
}

const Target colorTarget("color_table", CompareColors);
const Target lineTypeTarget("line_types",
                            [](std::string_view bytes) { CompareAs("WKOKES.CAR", Looked::lines, bytes); });
const Target codeTarget("code_tables",
                        [](std::string_view bytes) { CompareAs("DKM1_3.TB", Looked::both, bytes); });
const Target symbolTarget("symbol_table",
                          [](std::string_view bytes) { CompareAs("WKOKES.SYM", Looked::symbols, bytes); });

}  // namespace
}  // namespace vemrado_fuzz
