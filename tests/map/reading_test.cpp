// What the records of a file mean on the map, and what the symbology says of their codes.

#include "map/reading.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "map/symbology.h"
#include "tables/symbology_files.h"

namespace vemrado::map {
namespace {

std::string Shown(Point point) {
    std::ostringstream text;
    text << point.x << "," << point.y;
    return text.str();
}

// Without the sign of what is no number.
double Turned(double degrees) {
    return std::isnan(degrees) ? NAN : degrees;
}

std::string Shown(const MapLine& line, const std::span<const Stroke>& strokes) {
    std::ostringstream text;
    for (const Stroke& stroke : strokes) {
        for (const Point point : line.points.subspan(stroke.first, stroke.count)) text << Shown(point) << " ";
        text << "[" << stroke.code.text << "] ";
    }
    return text.str();
}

std::string Shown(const MapLine& line) {
    std::ostringstream text;
    text << line.layer << "@" << line.fileLine << ": " << Shown(line, line.strokes);
    for (const PlacedSymbol& symbol : line.symbols) {
        text << "S" << symbol.symbol << " at " << Shown(symbol.point) << " x" << symbol.scale << " turned "
             << Turned(symbol.rotation) << (symbol.mirrored ? " mirrored" : "")
             << (symbol.drawable ? "" : " not drawn") << " [" << symbol.code.text << "] ";
    }
    if (line.pointsLeftOut > 0) text << "left out " << line.pointsLeftOut << " ";
    return text.str() + "\n";
}

std::string Shown(const MapText& text) {
    constexpr const char* faults[] = {"", " no place", " no size", " no rotation"};
    std::ostringstream shown;
    shown << text.layer << "@" << text.fileLine << ": '" << text.text << "' at " << Shown(text.point)
          << " high " << text.height << "/" << text.heightOnPaper << " turned " << Turned(text.rotation)
          << " key " << text.anchor.Key() << (text.face.bold ? " bold" : "")
          << faults[static_cast<int>(text.fault)] << "\n";
    return shown.str();
}

// The elements of a file of these records, behind a header.
std::string Read(const std::string& records, int axisOrientation = 1, AngleUnit unit = AngleUnit::gon,
                 uint64_t replacedBytes = 0) {
    vemrado_test::MemoryFiles files;
    files["map"] = "&R 0 0 0 0 500\n&U 4\n" + records + "&K\n";
    Importer importer;
    OpenOptions options;
    options.fileName = "map";
    options.axisOrientation = axisOrientation;
    EXPECT_TRUE(importer.Open(options));
    Reading reading(importer, client::Encoding::windows1250, unit);
    std::string all;
    for (ElementKind kind = reading.Next(); kind != ElementKind::none; kind = reading.Next()) {
        all += kind == ElementKind::line ? Shown(reading.Line()) : Shown(reading.Text());
    }
    EXPECT_EQ(reading.Decoder().ReplacedBytes(), replacedBytes);
    EXPECT_TRUE(importer.Complete());
    return all;
}

TEST(Reading, FindsStrokesWithTheirCodes) {
    const struct {
        const char* records;
        const char* read;
    } cases[] = {
        // P begins a stroke; every other letter is a segment to its point.
        {"&L P 1 2\nC 1 3\nP 5 5\nR 6 6\nK 6 7\n", "4@3: 2,1 3,1 [] 5,5 6,6 7,6 [] \n"},
        {"&L L 0 0\nP 0 1\n", "4@3: \n"},
        // A code holds until the next one in the line; a segment has the code of the element where it ends.
        {"&L P 0 0 K=5\nL 0 1\nL 0 2 K=6\nL 0 3\n", "4@3: 0,0 1,0 [5] 1,0 2,0 3,0 [6] \n"},
        {"&L P 0 0 K=5\nL 0 1 K=6\nL 0 2 K=5\nL 0 3 K=5\n", "4@3: 0,0 1,0 [6] 1,0 2,0 3,0 [5] \n"},
        {"&L P 0 0\nL 0 1 K=5\nP 0 2\nL 0 3\n&L P 0 0\nL 0 1\n",
         "4@3: 0,0 1,0 [5] 2,0 3,0 [5] \n4@7: 0,0 1,0 [] \n"},
        // Key fields on a line of their own belong to the element before it, in the first line of a file too.
        {"&L P 0 0\n x K=7 S=101 M=2\nL 9 9\n more U=100\n&L P 0 0\n x K=7 S=101\n L 9 9\n",
         "4@3: 0,0 9,9 [7] S101 at 0,0 x2 turned 270 mirrored [7] \n"
         "4@7: 0,0 9,9 [7] S101 at 0,0 x1 turned 270 mirrored [7] \n"},
        {"&L\n x K=7 S=3\nL 0 0\nL 0 1\n", "4@3: 0,0 1,0 [7] \n"},
        // Points that are no place break the stroke and take their symbols with them; their code holds.
        {"&L P 0 0\nL 0 1\nL nan 2 K=5 S=3\nL 0 3\nL 0 4\nL 1e300 0\n",
         "4@3: 0,0 1,0 [] 3,0 4,0 [5] left out 2 \n"},
        {"&L P inf 0\n x K=5\nL 0 1\nL 0 2\n", "4@3: 1,0 2,0 [5] left out 1 \n"},
        // Codes are UTF-8 and told apart by their text.
        {"&L P 0 0 K=\xE8"
         "1\nL 0 1\nL 0 2 K=\xE8"
         "1\nL 0 3 K=\xC8\n",
         "4@3: 0,0 1,0 2,0 [č1] 2,0 3,0 [Č] \n"},
    };
    for (const auto& test : cases) EXPECT_EQ(Read(test.records), test.read) << test.records;
}

TEST(Reading, PlacesSymbolsAndTexts) {
    const std::string symbol = "&L P 1 2 K=5 S=101 U=100\n";
    const std::string text = "&U 7\n&T 1 2 \"Lhota\" K=1005 D=1 U=100\n";
    const struct {
        int axisOrientation;
        const char* read;
    } cases[] = {
        // North is up: rotations are as in the file, and the other orientations turn and mirror them.
        {128,
         "4@3: S101 at -1,-2 x1 turned 90 [5] \n7@5: 'Lhota' at -1,-2 high 2.2/4.4 turned 90 key 1 bold\n"},
        {16, "4@3: S101 at 1,2 x1 turned 270 [5] \n7@5: 'Lhota' at 1,2 high 2.2/4.4 turned 270 key 1 bold\n"},
        {2,
         "4@3: S101 at 2,-1 x1 turned 180 [5] \n7@5: 'Lhota' at 2,-1 high 2.2/4.4 turned 180 key 1 bold\n"},
        {4, "4@3: S101 at -2,1 x1 turned 0 [5] \n7@5: 'Lhota' at -2,1 high 2.2/4.4 turned 0 key 1 bold\n"},
        {1,
         "4@3: S101 at 2,1 x1 turned 180 mirrored [5] \n"
         "7@5: 'Lhota' at 2,1 high 2.2/4.4 turned 180 key 7 bold\n"},
        {8,
         "4@3: S101 at -2,-1 x1 turned 0 mirrored [5] \n"
         "7@5: 'Lhota' at -2,-1 high 2.2/4.4 turned 0 key 7 bold\n"},
        {32,
         "4@3: S101 at -1,2 x1 turned -90 mirrored [5] \n"
         "7@5: 'Lhota' at -1,2 high 2.2/4.4 turned -90 key 7 bold\n"},
        {64,
         "4@3: S101 at 1,-2 x1 turned 90 mirrored [5] \n"
         "7@5: 'Lhota' at 1,-2 high 2.2/4.4 turned 90 key 7 bold\n"},
    };
    for (const auto& test : cases) EXPECT_EQ(Read(symbol + text, test.axisOrientation), test.read);

    // Angles are taken within a turn, by their unit.
    EXPECT_EQ(Read("&L P 0 0 S=1 U=-1.5707963267948966\n", 128, AngleUnit::radian),
              "4@3: S1 at -0,-0 x1 turned -90 [] \n");
    EXPECT_EQ(Read("&L P 0 0 S=1 U=450\n", 128, AngleUnit::degree), "4@3: S1 at -0,-0 x1 turned 90 [] \n");
    // What cannot be shown is told.
    EXPECT_EQ(Read("&L P 0 0 S=1 M=0\n&L P 0 0 S=1 M=1e9\n&L P 0 0 S=1 U=inf\n", 32),
              "4@3: S1 at -0,0 x0 turned 0 mirrored not drawn [] \n"
              "4@4: S1 at -0,0 x1e+09 turned 0 mirrored not drawn [] \n"
              "4@5: S1 at -0,0 x1 turned nan mirrored not drawn [] \n");
    EXPECT_EQ(Read("&T nan 0 'a'\n&T 0 0 'b' H=-1\n&T 0 0 'c' U=inf D=77\n", 16),
              "4@3: 'a' at nan,0 high 0.85/1.7 turned 180 key 2 no place\n"
              "4@4: 'b' at 0,0 high -0.5/-1 turned 180 key 2 no size\n"
              "4@5: 'c' at 0,0 high 0.85/1.7 turned nan key 2 no rotation\n");
    // Bytes without a character are counted, in texts and in codes.
    EXPECT_EQ(Read("&T 1 1 'a\x81'\n&L P 0 0 K=\x83"
                   "5\nL 0 1\n",
                   1, AngleUnit::gon, 2),
              "4@3: 'a\uFFFD' at 1,1 high 0.85/1.7 turned 270 key 8\n4@4: 0,0 1,0 [\uFFFD5] \n");
}

TEST(Reading, HandsOutWholeStrokesToo) {
    vemrado_test::MemoryFiles files;
    files["map"] = "&U 12\n&L x 0 0 K=5\nL 0 1 K=6\n x K=8\nL 0 2\nL 0 nan\nL 0 3 K=7\nC 0 4\n&K\n";
    Importer importer;
    OpenOptions options;
    options.fileName = "map";
    options.layerName = "mine";
    options.axisOrientation = 1;
    ASSERT_TRUE(importer.Open(options));
    Reading reading(importer);
    ASSERT_EQ(reading.Next(), ElementKind::line);
    const MapLine& line = reading.Line();
    EXPECT_EQ(line.layerName, "mine");
    EXPECT_EQ(Shown(line, line.wholeStrokes), "0,0 1,0 2,0 [8] 3,0 4,0 [7] ");
    EXPECT_STREQ(line.types.data(), "?LLLC");
    EXPECT_EQ(line.codeNumbers[1], 8);
    EXPECT_EQ(line.penCodes[2], 8);
    EXPECT_FALSE(line.CodeAt(2).Given());
}

TEST(Header, IsKept) {
    vemrado_test::MemoryFiles files;
    files["map"] = "&*  Lhota\n&V Sheet 10 20\n&D 24.11.2026  S=3 \n&*by us\n&*\n&L P 0 0\n&* later\n&K\n";
    files["other"] = "&K\n";
    Importer importer;
    OpenOptions options;
    options.fileName = "map";
    ASSERT_TRUE(importer.Open(options));
    CVKMDetails& details = importer.Details();
    double first = 0, second = 0;
    details.GetOrigin(&first, &second);
    EXPECT_STREQ(details.GetHeaderName(), "Sheet");
    EXPECT_STREQ(details.GetHeaderDate(), "24.11.2026  S=3");
    EXPECT_EQ(first, 10);
    EXPECT_EQ(second, 20);
    while (importer.Next() != ElementKind::none) EXPECT_EQ(importer.Line().fileLine, 6);
    EXPECT_STREQ(details.GetHeaderComments(), "Lhota\nby us");
    options.fileName = "other";
    ASSERT_TRUE(importer.Open(options));
    EXPECT_STREQ(details.GetHeaderComments(), "");
    EXPECT_EQ(importer.LineCount(), 1);
}

std::string Dashes(const std::vector<double>& lengths) {
    Pen pen;
    pen.width = 0.25;
    SetDashes(pen, lengths);
    if (pen.invisible) return "invisible";
    if (pen.dashes.empty()) return "continuous";
    std::ostringstream text;
    for (const double length : pen.dashes) text << length << " ";
    text << "from " << pen.dashOffset;
    return text.str();
}

TEST(Dashes, FollowThePatternAsItRepeats) {
    const struct {
        std::vector<double> pattern;  // drawn, gap, ...
        const char* expected;
    } cases[] = {
        {{2, 1}, "2 1 from 0"},
        {{2, 1, 0.5, 1}, "2 1 0.5 1 from 0"},
        // The end of one round and the beginning of the next are one dash.
        {{1.5, 0.5, 0.25}, "1.75 0.5 from 0.25"},
        {{-1, 1, 2}, "2 1 from 2"},  // begins with the gap
        {{-1, 1, 2, 3}, "2 4 from 5"},
        {{1, -1, 1, 2, -1, 2}, "2 4 from 0"},
        {{0, 1}, "0.25 1 from 0"},   // a dot as long as the pen is wide
        {{0.1, 1}, "0.1 1 from 0"},  // shorter than the pen is wide
        {{}, "continuous"},
        {{3}, "continuous"},
        {{-1, 3}, "invisible"},
        {{1e-9, 1e-9}, "continuous"},
        {{INFINITY, 1, 2}, "2 1 from 2"},
        {{NAN, NAN}, "continuous"},
        {{1e308, 1, 1e308, 1}, "continuous"},
    };
    for (const auto& test : cases) EXPECT_EQ(Dashes(test.pattern), test.expected);
}

// Pen and name of a code.
std::string PenText(Importer& importer, int code) {
    const auto pen = FindPen(importer.Details(), code);
    std::ostringstream text;
    text << LineCodeName(importer.Details(), code) << ":";
    if (!pen) return text.str() + " none";
    text << std::hex << " " << pen->colour << std::dec << " " << pen->width;
    for (const double length : pen->dashes) text << " " << length;
    return text.str();
}

TEST(Symbology, IsAskedByCode) {
    vemrado_test::SymbologyFiles tables;
    tables["WKOKES.COL"] = "[white]\n1=255,0,0\n2=0,0,255\n[width]\n";
    tables["WKOKES.CAR"] = "-3 0.1 1\n10 1,0.5 -3\n20 2 , 0.25 1\n30 1,200 -4\n";
    tables["DKM1_3.TB"] = ":S\n101 1 bod\n:L\n5 10 ze\xEF \n6 20\n6 10 not this\n7 30 \n8 99 nowhere\n";
    tables["WKOKES.SYM"] = "POINTS\n1\n";
    Importer importer;
    CVKMDetails& details = importer.Details();
    EXPECT_EQ(PenText(importer, 5), ": none");  // not loaded
    details.LoadSymbology(1);
    EXPECT_EQ(PenText(importer, 5), "zeď: ff 0.5 0.1 1");
    EXPECT_EQ(PenText(importer, 6), ": ff0000 0.25");
    EXPECT_EQ(PenText(importer, 7), ": ff 0.18");  // too wide, and a pattern that is missing
    EXPECT_EQ(PenText(importer, 8), "nowhere: none");
    EXPECT_EQ(PenText(importer, -1), ": none");
    ASSERT_EQ(LineCodes(details).size(), 4U);
    EXPECT_EQ(LineCodes(details)[3].number, 99);
    ASSERT_EQ(SymbolCodes(details).size(), 1U);
    EXPECT_EQ(SymbolCodes(details)[0].name, "bod");
    EXPECT_FALSE(FindDrawing(details, 101));  // there is no such shape file
    int code = 0;
    const char* name = nullptr;
    for (const int place : {-1, 4, INT32_MAX}) EXPECT_EQ(details.GetLineCode(place, &code, &code, &name), 0);

    details.SetDataDirectory(VEMRADO_SAMPLE_SYMBOLOGY);
    details.LoadSymbology(1);
    const auto drawing = FindDrawing(details, 101);
    ASSERT_TRUE(drawing);
    EXPECT_FALSE(drawing->strokes.empty());
    EXPECT_GT(drawing->reach, 0);
    EXPECT_TRUE(drawing->bounds.Contains({0, 0}));
}

}  // namespace
}  // namespace vemrado::map
