// A host that brings its own info-window library, and the language that its drawing library reports.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "host/foreign/module_library.h"
#include "temporary_file.h"

namespace {

void SetEnvironment(const char* name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name, value);
#else
    setenv(name, value, 1);
#endif
}

// The library that is loaded first takes the place of every other of its name.
class OwnInfoWindow : public testing::Test {
  protected:
    std::string Calls() const { return window.Find<const char*()>("RecordedCalls")(); }

    static std::string LongFile() {
        std::string content = "&L P 0 0\n";
        while (content.size() < 20000) content += "L 100.25 200.75\n";
        return content + "&T 1 2 'behind the line'\n&K\n";
    }

    const ModuleLibrary window{VEMRADO_RECORDING_INFO_WINDOW};
    const TemporaryFile file{LongFile()};
};

TEST_F(OwnInfoWindow, GetsEveryStepOnceAndIsClosed) {
    const ModuleLibrary module;
    ForeignImporter importer(module);
    ASSERT_EQ(importer.Open(file.Path()), 1);
    EXPECT_EQ(importer.ReadNext(), 1);
    EXPECT_EQ(importer.ReadNext(), 2);
    importer.Close();

    std::istringstream calls(Calls());
    std::string line;
    ASSERT_TRUE(std::getline(calls, line));
    EXPECT_EQ(line.rfind("create ", 0), 0u) << line;
    // The file has somewhat more than 20,000 bytes, so a hundredth is 200. A line counts its bytes and one
    // more: 17, but 10 for the first.
    for (int lines = 50; lines <= 1250; lines += 50) {
        ASSERT_TRUE(std::getline(calls, line));
        EXPECT_EQ(line, "draw " + std::to_string((lines * 17 - 7) / 200) + "/100 0");
    }
    ASSERT_TRUE(std::getline(calls, line));
    EXPECT_EQ(line, "close");
    EXPECT_FALSE(std::getline(calls, line)) << line;
}

TEST_F(OwnInfoWindow, StopsTheImportWhichMayGoOn) {
    const ModuleLibrary module;
    ForeignImporter importer(module);
    ASSERT_EQ(importer.Open(file.Path()), 1);
    window.Find<void(int)>("StopFrom")(40);
    EXPECT_EQ(importer.ReadNext(), 0);
    EXPECT_NE(Calls().find("draw 4"), std::string::npos) << Calls();
    window.Find<void(int)>("StopFrom")(1000);
    EXPECT_EQ(importer.ReadNext(), 1);  // what is left of the line
    EXPECT_EQ(importer.ReadNext(), 2);
}

TEST_F(OwnInfoWindow, IsClosedWithTheImporter) {
    const ModuleLibrary module;
    {
        ForeignImporter importer(module);
        ASSERT_EQ(importer.Open(file.Path()), 1);
        EXPECT_EQ(Calls().find("close"), std::string::npos);
    }
    EXPECT_NE(Calls().find("close\n"), std::string::npos);
}

// Texts are in Windows-1250.
TEST_F(OwnInfoWindow, ShowsTheLanguageThatTheHostHadWhenTheModuleWasLoaded) {
    const struct {
        const char* country;
        const char* expected;
    } cases[] = {
        {"0", "create \xC8ten\xED vstupn\xEDho souboru|\xC8ten\xED vstupn\xEDho souboru|Konec\n"},
        {"1", "create Reading input file|Reading input file|End\n"},
        {"2", "create Lesen Eingangsdatei|Lesen Eingangsdatei|Ende\n"},
        {"-1", "create Reading input file|Reading input file|End\n"},
    };
    for (const auto& test : cases) {
        SetEnvironment("VEMRADO_COUNTRY", test.country);
        const ModuleLibrary module;
        SetEnvironment("VEMRADO_COUNTRY", "3");
        const size_t before = Calls().size();
        ForeignImporter importer(module);
        ASSERT_EQ(importer.Open(file.Path()), 1);
        EXPECT_EQ(Calls().substr(before), test.expected);
    }
}

}  // namespace
