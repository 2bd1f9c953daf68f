// The symbology of a directory that the registry file names, asked for by slot.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "host/foreign/module_library.h"
#include "temporary_file.h"

namespace {

int CountBox(void* context, const char*, unsigned int) {
    ++*static_cast<int*>(context);
    return 1;
}

class RegistrySymbology : public testing::Test {
  protected:
    RegistrySymbology() {
        setenv("VEMRADO_REGISTRY", registry.Path(), 1);
        using Handler = int (*)(void*, const char*, unsigned int);
        module.Find<void(Handler, void*)>("FrameworkSetMessageBoxHandler")(CountBox, &boxes);
    }

    struct Style {
        int found;
        unsigned int colour;
        int pattern;
    };
    // Of an element (slot 11) or a layer (slot 16).
    Style StyleFrom(int slot, int number) const {
        Style style = {};
        style.found =
            importer.Call<int, int, unsigned int*, int*>(slot, number, &style.colour, &style.pattern);
        return style;
    }

    const TemporaryFile registry{
        "Windows Registry Editor Version 5.00\n\n"
        "[HKEY_LOCAL_MACHINE\\Software\\Zorvat\\Ini\\Velka]\n"
        "\"LocalPath\"=\"" VEMRADO_SAMPLE_SYMBOLOGY "\"\n",
        ".reg"};
    const TemporaryFile map{"&U 1\n&L P 0 0 K=21800 S=102 U=50\nL 5 5 K=21700\nL 9 9 K=1 S=1\n&K\n"};
    const ModuleLibrary module;
    const ForeignImporter importer{module};
    int boxes = 0;
};

TEST_F(RegistrySymbology, GivesColoursPatternsAndSymbols) {
    ASSERT_EQ(importer.Open(map.Path(), 1, 1), 1);
    EXPECT_EQ(boxes, 0);
    ASSERT_EQ(importer.ReadNext(), 1);

    constexpr unsigned int brickRed = 140 + 30 * 256 + 20 * 65536;
    const Style building = StyleFrom(11, 0);
    EXPECT_EQ(building.found, 1);
    EXPECT_EQ(building.colour, brickRed);
    EXPECT_EQ(building.pattern, 0);
    const Style district = StyleFrom(11, 1);
    EXPECT_EQ(district.found, 1);
    EXPECT_GT(district.pattern, 0);
    EXPECT_EQ(StyleFrom(11, 1).pattern, district.pattern);
    EXPECT_EQ(StyleFrom(11, 2).found, 0);

    const int boundaryStone = importer.Call<int, int>(8, 0);
    EXPECT_GT(boundaryStone, 0);
    EXPECT_EQ((importer.Call<int, int>(8, 0)), boundaryStone);
    EXPECT_EQ((importer.Call<int, int>(8, 2)), 0);

    EXPECT_EQ(StyleFrom(16, 4).colour, brickRed);
    EXPECT_EQ(StyleFrom(16, 12).found, 0);
    importer.Call<void, int, int>(17, 77, 4);
    EXPECT_EQ((importer.Call<int, int>(15, 4)), 77);
    EXPECT_EQ((importer.Call<int, int>(15, 5)), 0);
}

TEST_F(RegistrySymbology, IsReportedInOneBoxWhenItIsMissing) {
    const TemporaryFile elsewhere(
        "Windows Registry Editor Version 5.00\n\n"
        "[HKEY_LOCAL_MACHINE\\Software\\Zorvat\\Ini\\Velka]\n"
        "\"LocalPath\"=\"/no/such/directory\"\n",
        ".reg");
    setenv("VEMRADO_REGISTRY", elsewhere.Path(), 1);
    EXPECT_EQ(importer.Open(map.Path(), 1, 1), 1);
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(importer.ReadNext(), 1);
    EXPECT_EQ(StyleFrom(11, 0).found, 0);
}

}  // namespace
