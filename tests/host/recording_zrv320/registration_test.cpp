// Which patterns the module registers, when, under which names and how often, as the drawing library sees it.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "memory_files.h"
#include "on_threads.h"
#include "recording.h"
#include "symbols/shape_bytes.h"
#include "vemrado/vkm_interface.h"

namespace vemrado_test {
namespace {

const auto takeRecording = reinterpret_cast<TakeRecordingFunction>(dlsym(RTLD_DEFAULT, "TakeRecording"));
const auto setResults = reinterpret_cast<SetResultsFunction>(dlsym(RTLD_DEFAULT, "SetResults"));

class Registration : public testing::Test {
  protected:
    Registration() : importer(CVKMInterface::CreateVKMInterface()) {
        FrameworkSetDataDirectory("T:");
        File("WKOKES.COL") = "[white]\n1=1\n[width]\n";
        File("WKOKES.CAR") = "1 1 -2\n2 1 -2\n3 1 1\n4 1 -9\n-2 1.5 0.5\n-9";
        File("DKM1_3.TB") = ":L\n1 1\n2 2\n3 3\n4 4\n1030 2\n21900 1\n:S\n-7 1\n7 1\n8 2\n9 256\n10 3\n";
        File("WKOKES.SYM") = "a gone\n1\n2\n3\n256\n";
        File("a.ksh") = shapeMagic + Stroke(100) + Drawing({});
        files["map.vkm"] =
            "&L P 1 1 K=1 S=7\n L 2 2 K=2 S=-7\n L 3 3 K=3 S=8\n L 4 4 K=4 S=9\n L 5 5 K=5 S=10\n L 6 6 K=1 "
            "S=11\n&K\n";
    }
    ~Registration() override {
        CVKMInterface::DestroyVKMInterface(importer);
        FrameworkSetDataDirectory(nullptr);
    }

    void SetUp() override {
        ASSERT_NE(takeRecording, nullptr) << "the recording library is not the one that was loaded";
        takeRecording();
        setResults(1, 1);
    }

    std::string& File(const std::string& name) { return files["T:\\VKMSym\\" + name]; }
    std::string Open(int flags = 1) {
        EXPECT_EQ(importer->Open("map.vkm", 1, "", 1, 0, flags), 1);
        return takeRecording();
    }
    std::string Style(int index) {
        unsigned int colour = 0;
        int pattern = 0;
        const int result = importer->GetElementLineStyle(index, &colour, &pattern);
        return std::to_string(result) + "/" + std::to_string(pattern) + " ";
    }
    // Numbers of the patterns of every element, and what was registered for them.
    std::string Styles() {
        std::string styles;
        for (int i = 0; i < importer->GetElementCount(); ++i) styles += Style(i);
        return styles + takeRecording();
    }
    std::string Symbols() {
        std::string symbols;
        for (int i = 0; i < importer->GetElementCount(); ++i) {
            symbols += std::to_string(importer->GetElementSymbol(i)) + " ";
        }
        return symbols + takeRecording();
    }

    MemoryFiles files;
    MessageBoxes boxes;
    CVKMInterface* importer;
};

constexpr char dashes[] = "line L_2: 1.5,0,1 0.5,0,0 @\n";

TEST_F(Registration, LayersComeFirstAndEachLineTypeOnce) {
    EXPECT_EQ(Open(), std::string(dashes) + dashes) << "layers 1 and 10, one registration for each line type";
    ASSERT_EQ(importer->ReadNext(), 1);
    EXPECT_EQ(Styles(), "1/1 1/2 1/0 1/3 0/0 1/1 line L_9: @\n");
    EXPECT_EQ(Styles(), "1/1 1/2 1/0 1/3 0/0 1/1 ");
    EXPECT_EQ(Open(), std::string(dashes) + dashes) << "a second load starts anew";
}

TEST_F(Registration, WhatTheLibraryRefusesIsAskedAgainForLinesOnly) {
    setResults(0, 0);
    Open();
    ASSERT_EQ(importer->ReadNext(), 1);
    const std::string asked = std::string(dashes) + dashes + "line L_9: @\n" + dashes;
    EXPECT_EQ(Styles(), "1/0 1/0 1/0 1/0 0/0 1/0 " + asked);
    EXPECT_EQ(
        Symbols(),
        "0 0 0 0 0 0 point S_7: 0,0,0 1,0,1 @\npoint S_7: 0,0,0 1,0,1 @\npoint S_8: @\npoint S_10: @\n");
    setResults(-5, 1);
    EXPECT_EQ(Styles(), "1/-5 1/-4 1/0 1/-3 0/0 1/-5 " + std::string(dashes) + dashes + "line L_9: @\n");
    EXPECT_EQ(Styles(), "1/-5 1/-4 1/0 1/-3 0/0 1/-5 ");
    EXPECT_EQ(Symbols(), "0 0 0 0 0 0 ") << "symbols are not tried again";
}

TEST_F(Registration, SymbolsAreRegisteredByTheirVkmCode) {
    setResults(10, 1);
    Open();
    ASSERT_EQ(importer->ReadNext(), 1);
    EXPECT_EQ(
        Symbols(),
        "12 13 14 0 15 0 point S_7: 0,0,0 1,0,1 @\npoint S_7: 0,0,0 1,0,1 @\npoint S_8: @\npoint S_10: @\n");
    EXPECT_EQ(Symbols(), "12 13 14 0 15 0 ");
    Open(0);
    ASSERT_EQ(importer->ReadNext(), 1);
    EXPECT_EQ(Symbols(), "0 0 0 0 0 0 ") << "without flgSymbols";
}

TEST_F(Registration, ListsHoldAtMost1001Records) {
    for (int i = 0; i < 1100; ++i) File("WKOKES.CAR").append(" 3");
    ShapePart zigzag = {0, {}};
    for (int i = 0; i < 1100; ++i) zigzag.points.emplace_back(i, i % 2);
    File("a.ksh") = shapeMagic + Drawing({zigzag});
    Open();
    ASSERT_EQ(importer->ReadNext(), 1);
    Style(3);
    std::string list = takeRecording();
    EXPECT_EQ(std::count(list.begin(), list.end(), ' '), 1 + 1001 + 1);
    importer->GetElementSymbol(0);
    list = takeRecording();
    EXPECT_EQ(std::count(list.begin(), list.end(), ' '), 1 + 1001 + 1);
}

// The recording library keeps what it records without a lock.
TEST_F(Registration, CallsOfSeveralThreadsComeOneAtATime) {
    FrameworkSetFileProvider(nullptr);
    FrameworkSetDataDirectory(VEMRADO_SAMPLE_SYMBOLOGY);
    OnThreads(8, [](int) {
        CVKMInterface* own = CVKMInterface::CreateVKMInterface();
        own->Open(VEMRADO_SAMPLE_MAP, 1, "", 1, 0, 1);
        while (const int kind = own->ReadNext()) {
            for (int i = 0; kind == 1 && i < own->GetElementCount(); ++i) {
                unsigned int colour;
                int pattern;
                own->GetElementLineStyle(i, &colour, &pattern);
                own->GetElementSymbol(i);
            }
        }
        CVKMInterface::DestroyVKMInterface(own);
    });
    const std::string list = takeRecording();
    EXPECT_EQ(std::count(list.begin(), list.end(), '@'), std::count(list.begin(), list.end(), '\n'));
    EXPECT_EQ(list.find("overlap"), list.npos);
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n') % 8, 0);
    EXPECT_NE(list.find("point"), list.npos);
}

}  // namespace
}  // namespace vemrado_test
