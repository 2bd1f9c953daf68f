// From the records of a file to what is drawn on paper.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "client/data_directory.h"
#include "client/symbology_index.h"
#include "draw/map_sheet.h"
#include "draw/scene_builder.h"
#include "temporary_file.h"
#include "zrv320/zrv320.h"

namespace vemrado::draw {
namespace {

// A symbology of two line types, with the symbols of the sample symbology.
class SmallSymbology {
  public:
    SmallSymbology() : directory(std::string(TemporaryFile("").Path()) + "-data") {
        namespace fs = std::filesystem;
        fs::create_directories(directory + "/VKMSym");
        for (const auto& entry : fs::directory_iterator(VEMRADO_SAMPLE_SYMBOLOGY "/VKMSym")) {
            fs::copy(entry.path(), directory + "/VKMSym");
        }
        Write("WKOKES.COL", "[white]\n1=255,0,0\n2=0,0,255\n[width]\n");
        Write("WKOKES.CAR", "-3 2 1\n10 1,0.5 1\n20 2 , 0.25 -3\n30 1 -3\n");
        Write("DKM1_3.TB",
              ":S\n101 1 a point\n:L\n5 10 wall\n6 20  thin hedge \n6 10 not this\n7 30\n8 99 nowhere\n");
        client::UseDataDirectory(directory);
    }
    SmallSymbology(const SmallSymbology&) = delete;
    SmallSymbology& operator=(const SmallSymbology&) = delete;
    ~SmallSymbology() {
        client::UseDataDirectory("");
        std::filesystem::remove_all(directory);
    }

    const std::string directory;

  private:
    void Write(const char* name, const char* text) { std::ofstream(directory + "/VKMSym/" + name) << text; }
};

class RecordingCanvas : public Canvas {
  public:
    std::ostringstream log;

    void BeginGroup(const std::string& id, const std::string&) override { log << "[" << id << "\n"; }
    void EndGroup() override { log << "]\n"; }
    void BeginClip(const Box&) override {}
    void EndClip() override {}
    void Line(std::span<const Point> points, const Pen& pen, double lengthBefore) override {
        log << pen.id;
        for (const Point point : points) Put(point);
        if (lengthBefore != 0) log << " @" << lengthBefore;
        log << "\n";
    }
    void Symbol(const SymbolShape& shape, Point at, double scale, double rotation, const Pen& pen) override {
        log << shape.id;
        Put(at);
        log << " scale " << scale << " turned " << rotation << " in " << std::hex << pen.colour << std::dec
            << "\n";
    }
    void Text(const std::string& text, Point at, const TextStyle& style) override {
        log << "'" << text << "'";
        Put(at);
        log << " high " << style.height << " turned " << style.rotation << " anchor "
            << static_cast<int>(style.across) << static_cast<int>(style.upright)
            << (style.font.bold ? " bold" : "") << "\n";
    }
    void Fill(std::span<const Point>, uint32_t) override {}
    void Finish() override {}

  private:
    void Put(Point point) {
        log << " " << std::round(point.x * 100) / 100 << "," << std::round(point.y * 100) / 100;
    }
};

struct Drawn {
    Scene scene;
    std::string log;
};

// The sheet shows x and y from 0 to 100 m at 1:1000, with y up: the record "P 10 20" is at 20,90 on paper.
Drawn Draw(const std::string& records, const SmallSymbology& symbology, SceneOptions options = {}) {
    const TemporaryFile file(records);
    const client::SymbologyIndex index(symbology.directory);
    client::Importer importer;
    client::OpenOptions open;
    open.fileName = file.Path();
    open.loadSymbology = true;
    open.flags = CVKMInterface::flgSymbols;
    EXPECT_TRUE(importer.Open(open));
    options.box = Box{0, 0, 100, 100};
    SceneBuilder builder(importer, index, options);
    for (auto kind = importer.Next(); kind != client::ElementKind::none; kind = importer.Next())
        builder.Take(kind);
    Drawn drawn{builder.Finish(), {}};
    SheetOptions sheet;
    sheet.box = options.box;
    RecordingCanvas canvas;
    MapSheet(drawn.scene, index, sheet).Draw(canvas);
    drawn.log = canvas.log.str();
    return drawn;
}

const std::string header = "&R 0 0 0 0 1000\n&U 4\n";

TEST(Scene, DrawsRecordsAsTheMapShowsThem) {
    const SmallSymbology symbology;
    const struct {
        std::string records;
        std::string drawn;
    } cases[] = {
        // P begins a stroke; every other letter is a segment to its point.
        {"&L P 10 20\nC 10 30\nP 50 50\nR 60 60\nK 60 70\n",
         "line-plain 20,90 30,90\nline-plain 50,50 60,40 70,40\n"},
        // A code holds until the next one; a segment has the code of the element where it ends.
        {"&L P 0 0 K=5\nL 0 10\nL 0 20 K=6\nL 0 30\n", "line-5 0,100 10,100\nline-6 10,100 20,100 30,100\n"},
        {"&L P 0 0\nL 0 10 K=5\nL 0 20\n", "line-5 0,100 10,100 20,100\n"},
        {"&L L 0 0 K=5\nL 0 10\n", "line-5 0,100 10,100\n"},
        {"&L P 0 0 K=8\nL 0 10\n", "line-8 0,100 10,100\n"},
        // Alike go together, in the order of their first use.
        {"&L P 0 0 K=6\nL 0 10\n&L P 0 0 K=5\nL 0 10\n&L P 0 0 K=6\nL 0 20\n",
         "line-6 0,100 10,100\nline-6 0,100 20,100\nline-5 0,100 10,100\n"},
        // What leaves the sheet is cut, and its dashes run on.
        {"&L P -50 -20 K=6\nL -50 20\nL 50 20\n", "line-6 20,102 20,50 @88\n"},
        {"&L P 0 200\nL 10 200\n", ""},
        // Points that are no place break the stroke.
        {"&L P 0 0\nL 0 10\nL nan 20\nL 0 30\nL 1e300 0\n", "line-plain 0,100 10,100\n"},
        // Symbols: M is the scale, U the rotation in gons; they have the colour of their element.
        {"&L P 10 20 S=101 U=100\n", "symbol-101 20,90 scale 1 turned 90 in 0\n"},
        {"&L P 10 20 K=5 S=101 M=2.5 U=-500\n", "symbol-101 20,90 scale 2.5 turned -90 in ff\n"},
        {"&L P 10 20 S=101 M=0\nP 10 20 S=101 M=-1\nP 10 20 S=101 U=inf\nP 10 20 S=999\n", ""},
        // Texts: H is the height on paper, D the anchor.
        {"&T 10 20 \"a\" H=3 U=50 D=9 F=3\n", "'a' 20,90 high 3 turned 45 anchor 22 bold\n"},
        {"&T 10 20 \"a\tb\"\n", "'a b' 20,90 high 1.7 turned 0 anchor 10\n"},
        {"&T 10 20 \"\xE8\" H=1 D=4\n&T 10 20 \"\"\n", "'č' 20,90 high 1 turned 0 anchor 01\n"},
        {"&T 10 20 \"a\" H=0\n&T 10 20 \"a\" H=nan\n&T nan 20 \"a\"\n", ""},
    };
    for (const auto& test : cases) {
        const std::string drawn = Draw(header + test.records + "&K\n", symbology).log;
        EXPECT_EQ(drawn, test.drawn.empty() ? "" : "[layer-4\n" + test.drawn + "]\n") << test.records;
    }
}

TEST(Scene, CountsWhatCannotBeDrawn) {
    const SmallSymbology symbology;
    const Skipped skipped =
        Draw(header + "&L P nan 0\nL 0 inf S=101\nP 0 0 S=101 M=inf\n&T 0 0 \"a\" U=nan\n&K\n", symbology)
            .scene.skipped;
    EXPECT_EQ(skipped.points, 2U);
    EXPECT_EQ(skipped.symbols, 1U);
    EXPECT_EQ(skipped.texts, 1U);
    for (const char* scale : {"0", "-5", "nan", "1e99"}) {
        const Drawn drawn = Draw("&R 0 0 0 0 " + std::string(scale) + "\n&L P 0 0\nL 0 9\n&K\n", symbology);
        EXPECT_FALSE(drawn.scene.mapScaleUsable) << scale;
        EXPECT_EQ(drawn.log, "[layer-0\nline-plain 0,100 9,100\n]\n") << scale;
    }
}

TEST(Scene, KeepsToTheOptions) {
    const SmallSymbology symbology;
    const std::string records = header + "&L P 10 20 S=101 U=90\n&U 7\n&L P 0 0\nL 0 9\n&K\n";
    SceneOptions options;
    options.layers = {7};
    EXPECT_EQ(Draw(records, symbology, options).log, "[layer-7\nline-plain 0,100 9,100\n]\n");
    options.layers = {4};
    options.angleUnit = AngleUnit::degree;
    EXPECT_EQ(Draw(records, symbology, options).log,
              "[layer-4\nsymbol-101 20,90 scale 1 turned 90 in 0\n]\n");
    options.symbols = false;
    EXPECT_EQ(Draw(records, symbology, options).log, "");
}

TEST(Scene, TakesWidthsAndDashesFromTheSymbology) {
    const SmallSymbology symbology;
    const Scene scene =
        Draw(header + "&L P 0 0\nL 0 1 K=5\nL 0 2 K=6\nL 0 3 K=7\nL 0 4 K=8\n&K\n", symbology).scene;
    ASSERT_EQ(scene.lineStyles.size(), 5U);
    const auto shown = [&](size_t style) {
        const Pen& pen = scene.lineStyles[style].pen;
        std::ostringstream text;
        text << std::hex << pen.colour << std::dec << " " << pen.width;
        for (const double dash : pen.dashes) text << " " << dash;
        return text.str();
    };
    EXPECT_EQ(shown(1), "ff 0.5");
    EXPECT_EQ(shown(2), "ff0000 0.25 2 1");
    EXPECT_EQ(shown(3), "ff 0.18 2 1");  // gives no width
    EXPECT_EQ(shown(4), "0 0.13");       // has no line type
    EXPECT_FALSE(scene.lineStyles[4].known);
}

TEST(SymbologyIndex, KnowsNamesAndWidthsOfCodes) {
    const SmallSymbology symbology;
    std::filesystem::rename(symbology.directory + "/VKMSym", symbology.directory + "/vkmsym");
    std::filesystem::rename(symbology.directory + "/vkmsym/DKM1_3.TB",
                            symbology.directory + "/vkmsym/dkm1_3.tb");
    const client::SymbologyIndex index(symbology.directory);
    ASSERT_EQ(index.Lines().size(), 4U);
    EXPECT_EQ(index.FindLine(6)->name, "thin hedge");
    EXPECT_EQ(index.FindLine(6)->width, 0.25);
    EXPECT_EQ(index.FindLine(6)->dashPattern, 3);
    EXPECT_EQ(index.FindLine(5)->dashPattern, 0);
    EXPECT_EQ(index.FindLine(8)->width, 0);
    EXPECT_EQ(index.FindLine(7)->name, "");
    EXPECT_EQ(index.FindLine(10), nullptr);
    EXPECT_EQ(index.FindSymbol(101)->name, "a point");
    EXPECT_TRUE(client::SymbologyIndex("/nowhere").Lines().empty());
}

TEST(MapSheet, PutsEverythingOnThePageAtTheScaleOfTheMap) {
    const SmallSymbology symbology;
    const Drawn drawn =
        Draw(header + "&L P 0 0\nL 0 50\nL 80 50\n&T 80 50 \"Long enough to count\" D=1\n&K\n", symbology);
    const client::SymbologyIndex index(symbology.directory);
    const PageSize bare = MapSheet(drawn.scene, index, {}).Page();
    const double text = TextWidth("Long enough to count", {}, 1.7);
    EXPECT_NEAR(bare.width, 50 + text + 6, 0.01);
    EXPECT_NEAR(bare.height, 80 + 1.7 * 1.3 + 6, 0.01);
    const PageSize framed = MapSheet(drawn.scene, index, {std::nullopt, true, "title"}).Page();
    EXPECT_GT(framed.width, bare.width + 60);
}

}  // namespace
}  // namespace vemrado::draw
