// From the records of a file to what is drawn on paper.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "client/data_directory.h"
#include "draw/map_sheet.h"
#include "draw/scene_builder.h"
#include "temporary_file.h"

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
        Write("WKOKES.CAR", "-3 2 1\n10 1,0.5 1\n20 2 , 0.25 -3\n");
        Write("DKM1_3.TB", ":S\n101 1 a point\n104 4\n:L\n5 10 wall\n6 20 hedge\n8 99 nowhere\n");
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
            << (style.face.bold ? " bold" : "") << "\n";
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

// The sheet shows 100 m of ground at 1:1000: the record "P 10 20" is at 90,20 on paper.
Drawn Draw(const std::string& records, SceneOptions options = {}, int axisOrientation = 128) {
    const TemporaryFile file(records);
    map::Importer importer;
    map::OpenOptions open;
    open.fileName = file.Path();
    open.symbology = true;
    open.axisOrientation = axisOrientation;
    EXPECT_TRUE(importer.Open(open));
    options.box = axisOrientation == 128 ? Box{-100, -100, 0, 0} : Box{0, 0, 100, 100};
    SceneBuilder builder(importer, options);
    for (auto kind = importer.Next(); kind != map::ElementKind::none; kind = importer.Next())
        builder.Take(kind);
    Drawn drawn{builder.Finish(), {}};
    SheetOptions sheet;
    sheet.box = options.box;
    RecordingCanvas canvas;
    MapSheet(drawn.scene, sheet).Draw(canvas);
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
        // Each part of a line has the pen of its code; alike go together, in the order of their first use.
        {"&L P 0 0 K=5\nL 0 10\nL 0 20 K=6\nL 0 30\n", "line-5 100,0 100,10\nline-6 100,10 100,20 100,30\n"},
        {"&L P 0 0 K=8\nL 0 10\n", "line-8 100,0 100,10\n"},
        {"&L P 0 0 K=6\nL 0 10\n&L P 0 0\nL 0 10\n&L P 0 0 K=6\nL 0 20\n",
         "line-plain 100,0 100,10\nline-6 100,0 100,10\nline-6 100,0 100,20\n"},
        // What leaves the sheet is cut, and its dashes run on.
        {"&L P -20 -50 K=6\nL 20 -50\nL 20 50\n", "line-6 80,-2 80,50 @88\n"},
        {"&L P 0 200\nL 10 200\n", ""},
        // Symbols have the colour of the code that holds at their element.
        {"&L P 10 20 S=101 U=100\n", "symbol-101 90,20 scale 1 turned 90 in 0\n"},
        {"&L P 10 20 K=5 M=2.5 U=-500\nL 10 20 S=101\n",
         "line-5 90,20 90,20\nsymbol-101 90,20 scale 1 turned 0 in ff\n"},
        {"&L P 10 20 S=101 M=0\nP 10 20 S=999\n", ""},
        {"&T 10 20 \"a\" H=3 U=50 D=9 F=3\n", "'a' 90,20 high 3 turned 45 anchor 22 bold\n"},
        {"&T 10 20 \"a\tb\"\n&T 10 20 \"\"\n", "'a b' 90,20 high 1.7 turned 0 anchor 10\n"},
    };
    for (const auto& test : cases) {
        const std::string drawn = Draw(header + test.records + "&K\n").log;
        EXPECT_EQ(drawn, test.drawn.empty() ? "" : "[layer-4\n" + test.drawn + "]\n") << test.records;
    }
}

TEST(Scene, MirrorsTheDrawingsOfSymbolsWithTheMap) {
    const SmallSymbology symbology;
    const std::string records = header + "&L P 10 20 S=104\n&K\n";
    const Scene upright = Draw(records).scene;
    const Scene turned = Draw(records, {}, 16).scene;
    const Scene mirrored = Draw(records, {}, 1).scene;
    ASSERT_EQ(upright.symbolStyles.size(), 1U);
    const auto top = [](const Scene& scene) { return scene.symbolStyles[0].shape.bounds.maxY; };
    EXPECT_EQ(top(turned), top(upright));
    EXPECT_EQ(-top(mirrored), upright.symbolStyles[0].shape.bounds.minY);
    EXPECT_EQ(mirrored.symbolStyles[0].shape.strokes[0][0].y, -upright.symbolStyles[0].shape.strokes[0][0].y);
    EXPECT_EQ(mirrored.layers.at(4).symbols[0].rotation, 270);
}

TEST(Scene, CountsWhatCannotBeDrawn) {
    const SmallSymbology symbology;
    const Skipped skipped =
        Draw(header + "&L P nan 0\nL 0 inf S=101\nP 0 0 S=101 M=inf\n&T 0 0 \"a\" U=nan\n&K\n").scene.skipped;
    EXPECT_EQ(skipped.points, 2U);
    EXPECT_EQ(skipped.symbols, 1U);
    EXPECT_EQ(skipped.texts, 1U);
    for (const char* scale : {"0", "-5", "nan", "1e99"}) {
        const Drawn drawn = Draw("&R 0 0 0 0 " + std::string(scale) + "\n&L P 0 0\nL 0 9\n&K\n");
        EXPECT_FALSE(drawn.scene.mapScaleUsable) << scale;
        EXPECT_EQ(drawn.log, "[layer-0\nline-plain 100,0 100,9\n]\n") << scale;
    }
}

TEST(Scene, KeepsToTheOptions) {
    const SmallSymbology symbology;
    const std::string records = header + "&L P 10 20 S=101 U=90\n&U 7\n&L P 0 0\nL 0 9\n&K\n";
    SceneOptions options;
    options.layers = {7};
    EXPECT_EQ(Draw(records, options).log, "[layer-7\nline-plain 100,0 100,9\n]\n");
    options.layers = {4};
    options.angleUnit = AngleUnit::degree;
    EXPECT_EQ(Draw(records, options).log, "[layer-4\nsymbol-101 90,20 scale 1 turned 90 in 0\n]\n");
    options.symbols = false;
    EXPECT_EQ(Draw(records, options).log, "");
}

TEST(MapSheet, PutsEverythingOnThePageAtTheScaleOfTheMap) {
    const SmallSymbology symbology;
    const Drawn drawn = Draw(header + "&L P 50 80\nL 50 0\nL 0 0\n&T 0 0 \"Long enough to count\" D=1\n&K\n");
    const PageSize bare = MapSheet(drawn.scene, {}).Page();
    const double text = TextWidth("Long enough to count", {}, 1.7);
    EXPECT_NEAR(bare.width, 50 + text + 6, 0.01);
    EXPECT_NEAR(bare.height, 80 + 1.7 * 1.3 + 6, 0.01);
    const PageSize framed = MapSheet(drawn.scene, {std::nullopt, true, "title"}).Page();
    EXPECT_GT(framed.width, bare.width + 60);
}

}  // namespace
}  // namespace vemrado::draw
