// The importer as a host sees it: settings, progress, boxes, failures.

#include <gtest/gtest.h>

#include <stdexcept>

#include "interface/importer.h"
#include "memory_files.h"
#include "messages/collected_messages.h"
#include "messages/message_table.h"
#include "vemrado/vkm_details.h"

namespace vemrado_test {
namespace {

class Importer : public testing::Test {
  protected:
    Importer() : vkm(VkmDetails(vemrado::CreateImporter())) {}
    ~Importer() override { vemrado::DestroyImporter(vkm); }

    int Open(const std::string& bytes, int orientation = 1, int flags = 0, const char* layerName = "") {
        files["map.vkm"] = bytes;
        return vkm->Open("map.vkm", 0, layerName, orientation, 0, flags);
    }

    // Results of ReadNext to the end, with the number of elements of each line: "1:4 2 0".
    std::string Kinds() {
        std::string kinds;
        int kind;
        do {
            kind = vkm->ReadNext();
            kinds +=
                std::to_string(kind) + (kind == 1 ? ":" + std::to_string(vkm->GetElementCount()) : "") + " ";
        } while (kind != 0);
        return kinds;
    }

    MemoryFiles files;
    MessageBoxes boxes;
    CVKMDetails* vkm;
};

TEST_F(Importer, ElementsEndWithTheNextRecord) {
    const struct {
        const char* file;
        const char* kinds;
    } cases[] = {
        {"&U 1\n&L C 1 2\nC 1 2\nC 1 2\nC 1 2\n&L C 1 2\nC\nK\nL\n&T 1 2 'a'\n&K\n", "1:4 1:4 2 0 "},
        {"&L C 1 2\n&K\n", "1:1 0 "},
        {"&L C 1 2\nC 3 4\n&Q 1 2\nC 5 6\n&K\n", "1:3 0 "},
        {"&L C 1 2\nC 3 4\n&* 1 2\nC 5 6\n&K\n", "1:2 0 "},
        {"&L C 1 2\n&T 1 2 'lost'\n", "1:1 0 "},
        {"&L C 1 2\nC 3 4\nM=2\nx M=2\nK=5\n&K\n", "1:3 0 "},
        {"&L C 1 2\nx M=2\n&K\n", "1:2 0 "},  // the header's element is flushed before the keys come
        {"&L C 1 2\n&U 1\nC 1 2\n&G\nC\n&S\n&K", "1:1 0 "},
        {"&K\n&L C 1 2\n&U\n", "0 "},
        {"", "0 "},
        {"C 1 2\n&Q\n&L C 1 2\n&K", "1:1 0 "},
    };
    for (const auto& each : cases) {
        ASSERT_EQ(Open(each.file), 1);
        EXPECT_EQ(Kinds(), each.kinds) << each.file;
        EXPECT_EQ(vkm->ReadNext(), 0);
        vkm->Close();
    }
}

TEST_F(Importer, PointsAreMadeAbsoluteAndTurned) {
    const struct {
        int orientation;
        double x, y;
    } cases[] = {{1, 2020, 1010},  {2, 2020, -1010},  {4, -2020, 1010},  {8, -2020, -1010},
                 {16, 1010, 2020}, {32, -1010, 2020}, {64, 1010, -2020}, {128, -1010, -2020},
                 {6, 2020, 1010},  {0, 2020, 1010}};
    for (const auto& each : cases) {
        ASSERT_EQ(Open("&V v 1000 2000\n&R 0 0 0 0 500 r\n&L C 10 20\n&K", each.orientation), 1);
        ASSERT_EQ(vkm->ReadNext(), 1);
        double point[3] = {-1, -1, -1};
        vkm->GetElementPoint(0, point);
        EXPECT_EQ(point[0], each.x) << each.orientation;
        EXPECT_EQ(point[1], each.y) << each.orientation;
        EXPECT_EQ(point[2], 0);
        double host[3] = {2020, 1010, 5};
        vkm->TransformPoint(host);
        EXPECT_TRUE(host[0] == each.x && host[1] == each.y && host[2] == 5) << each.orientation;
        EXPECT_EQ(vkm->GetScale(), 500);
        vkm->Close();
    }
}

TEST_F(Importer, BadIndicesThrowAndChangeNothing) {
    ASSERT_EQ(Open("&L C 1 2 S=3 K=4\n&K", 1, 3), 1);
    ASSERT_EQ(vkm->ReadNext(), 1);
    double values[3];
    int number;
    unsigned int colour;
    for (const int index : {-1, 1, 2147483647}) {
        EXPECT_THROW(vkm->GetElementPoint(index, values), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementSymbol(index), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementSymbolPlacement(index, values, values, &number), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementLineStyle(index, &colour, &number), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementRValue(index, values), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementType(index), std::invalid_argument);
        EXPECT_THROW(vkm->GetElementCode(index), std::invalid_argument);
    }
    EXPECT_EQ(vkm->GetElementCount(), 1);
    EXPECT_EQ(vkm->GetElementSymbolPlacement(0, &values[0], &values[1], &number), 1);
    EXPECT_EQ(number, 2);
    ASSERT_EQ(Open("&L C 1 2 S=3 K=4\n&K"), 1);
    EXPECT_EQ(vkm->GetElementSymbol(-1), 0);
    EXPECT_EQ(vkm->GetElementSymbolPlacement(99, values, values, &number), 0);
}

TEST_F(Importer, LayerNameReplacesTheFilesLayers) {
    int number = -1;
    ASSERT_EQ(Open("&U -123\n&L C 1 2\n&K"), 1);
    ASSERT_EQ(vkm->ReadNext(), 1);
    EXPECT_STREQ(vkm->GetLayer(&number), "-1");
    EXPECT_EQ(number, -123);
    vkm->SetLayerName("roads");
    EXPECT_STREQ(vkm->GetLayer(&number), "roads");
    EXPECT_EQ(number, 0);
    vkm->SetLayerName(nullptr);
    EXPECT_STREQ(vkm->GetLayer(&number), "-1");
}

TEST_F(Importer, ExtentsOfPointsAndOfNothing) {
    double box[4];
    ASSERT_EQ(Open("&L C 1 2\nC 5 -3\n&T 9 9 'x'\n&K"), 1);
    EXPECT_EQ(vkm->GetExtents(&box[0], &box[1], &box[2], &box[3]), 1);
    EXPECT_TRUE(box[0] == -3 && box[1] == 1 && box[2] == 9 && box[3] == 9);
    for (const char* point : {"nan 2", "1 nan", "-1e999 2", "1 -1e999"}) {
        ASSERT_EQ(Open("&L C " + std::string(point) + "\n&K"), 1);
        EXPECT_EQ(vkm->GetExtents(&box[0], &box[1], &box[2], &box[3]), 0) << point;
    }
    ASSERT_EQ(Open("&K"), 1);
    EXPECT_EQ(vkm->GetExtents(&box[0], &box[1], &box[2], &box[3]), 0);
    EXPECT_TRUE(box[0] == 1.797693e308 && box[1] == 1.797693e308 && box[2] == -1.797693e308 &&
                box[3] == -1.797693e308);
}

TEST_F(Importer, AFileThatCannotBeOpenedIsShownOnce) {
    EXPECT_EQ(vkm->Open("no/such/map.vkm", 1, "name", 128, 0, 3), 0);
    EXPECT_EQ(boxes.count, 1);
    EXPECT_NE(boxes.texts.find("map.vkm"), std::string::npos) << boxes.texts;
    EXPECT_EQ(boxes.texts.find('\n'), std::string::npos);
    EXPECT_EQ(vkm->GetScale(), 1000);
    int number;
    EXPECT_STREQ(vkm->GetLayer(&number), "");
    double point[3] = {1, 2, 3};
    vkm->TransformPoint(point);
    EXPECT_EQ(point[0], 1);
    vkm->Close();
    EXPECT_EQ(vkm->ReadNext(), 0);
}

TEST_F(Importer, AReadErrorReachesTheHostAfterWhatWasRead) {
    std::string bytes = "&U 1\n";
    for (int i = 0; i < 20000; ++i) bytes += "&L C " + std::to_string(i) + " 2\nC 3 4\n";
    ASSERT_EQ(Open(bytes), 1);
    files.readLimit = 0;
    int lines = 0;
    double point[3];
    EXPECT_THROW(
        while (vkm->ReadNext() == 1) {
            vkm->GetElementPoint(0, point);
            ASSERT_EQ(point[1], lines++);
        },
        std::runtime_error);
    EXPECT_GT(lines, 1000);
    files.readLimit = -1;
    while (vkm->ReadNext() == 1) ++lines;
    EXPECT_EQ(lines, 19999) << "nothing may be lost around the failed read";

    files.readLimit = 0;
    EXPECT_THROW(vkm->Open("map.vkm", 0, "", 1, 0, 0), std::runtime_error);
}

TEST_F(Importer, AReadErrorInTheHeaderLeavesNoRecordOpen) {
    files.readLimit = 9;
    EXPECT_THROW(Open("&V a 1 2\nx y 5 6\n&R 0 0 0 0 1000 r\n&L C 1 1\n&K\n"), std::runtime_error);
    files.readLimit = -1;
    double point[3];
    ASSERT_EQ(vkm->ReadNext(), 1);
    vkm->GetElementPoint(0, point);
    EXPECT_TRUE(point[0] == 3 && point[1] == 2);
}

TEST_F(Importer, AClosedFileIsAtItsEnd) {
    EXPECT_EQ(vkm->ReadNext(), 0);
    EXPECT_EQ(vkm->GetElementCount(), 0);
    ASSERT_EQ(Open("&L C 1 2\nC 3 4\n&G\n&L C 5 6\n&K\n"), 1);
    ASSERT_EQ(vkm->ReadNext(), 1);
    vkm->Close();
    EXPECT_EQ(vkm->GetElementCount(), 2);
    EXPECT_EQ(vkm->ReadNext(), 0);
    EXPECT_EQ(vkm->GetElementCount(), 0);
}

// A host's window procedure runs inside ReadNext and may close the importer.
TEST_F(Importer, CanBeClosedFromThePump) {
    std::string bytes = "&L C 1 2\n";
    for (int i = 0; i < 200; ++i) bytes += "C 3 4 K=1\n";
    ASSERT_EQ(Open(bytes + "&K\n"), 1);
    FrameworkSetPumpHook([](void* importer) { static_cast<CVKMDetails*>(importer)->Close(); }, vkm);
    EXPECT_EQ(vkm->ReadNext(), 0);
    FrameworkSetPumpHook(nullptr, nullptr);
    EXPECT_EQ(files.openFiles, 0);
    EXPECT_EQ(vkm->ReadNext(), 0);
}

TEST(Messages, CollectedInOrderAndShownInOneBox) {
    MessageBoxes boxes;
    vemrado::CollectedMessages messages;
    messages.ShowMessages();
    messages.AddMessage("first");
    messages.AddFileMessage("C:\\a.col", vemrado::msgNoColorTable);
    messages.ShowMessages();
    messages.ShowMessages();
    const std::string shown =
        "first\nC:\\a.col: File does not contain color table.\nColors will not be imported.\n|";
    messages.ClearMessages();
    messages.ShowMessages();
    EXPECT_EQ(boxes.texts, shown + shown);
}

TEST(Messages, LanguageByCountry) {
    const struct {
        int country;
        const char* reading;
        const char* end;
    } cases[] = {{0, "\xC8ten\xED vstupn\xEDho souboru", "Konec"},
                 {2, "Lesen Eingangsdatei", "Ende"},
                 {-1, "Reading input file", "End"},
                 {3, "Reading input file", "End"},
                 {1, "Reading input file", "End"}};
    for (const auto& each : cases) {
        vemrado::SelectLanguage(each.country);
        EXPECT_STREQ(vemrado::msgReadingInputFile, each.reading);
        EXPECT_STREQ(vemrado::msgEnd, each.end);
    }
}

}  // namespace
}  // namespace vemrado_test
