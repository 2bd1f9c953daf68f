// Every operation of the interface by its position.

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

#include "host/foreign/module_library.h"
#include "temporary_file.h"

namespace {

using Point = std::array<double, 3>;

class Slots : public testing::Test {
  protected:
    Point PointFrom(int slot) const {
        Point point = {-1, -1, -1};
        importer.Call<void, double*>(slot, point.data());
        return point;
    }
    Point ElementPoint(int index) const {
        Point point = {-1, -1, -1};
        importer.Call<void, int, double*>(7, index, point.data());
        return point;
    }
    // Name and number of the layer in one text.
    std::string Layer() const {
        int number = -1;
        const char* name = importer.Call<const char*, int*>(10, &number);
        return std::string(name) + " " + std::to_string(number);
    }

    const TemporaryFile file{
        "&V name 1000 2000\n&R 0 0 0 0 500 r\n&U 12\n"
        "&L P 10 20 K=7\nL 11 22 R=2.5 S=33 M=0.5 U=50\n"
        "&T 30 40 'text' D=3 F=4 H=2 U=100\n&K\n"};
    ModuleLibrary module;
    ForeignImporter importer{module};
};

TEST_F(Slots, ReadALineAndATextToTheEnd) {
    ASSERT_EQ(importer.Open(file.Path(), 3), 1);
    EXPECT_EQ(importer.Call<double>(21), 500.0);

    ASSERT_EQ(importer.ReadNext(), 1);
    EXPECT_EQ(importer.Call<int>(13), 2);
    EXPECT_EQ((importer.Call<int, int>(14, 0)), 'P');
    EXPECT_EQ((importer.Call<int, int>(14, 1)), 'L');
    EXPECT_EQ(ElementPoint(0), (Point{2020, 1010, 0}));
    EXPECT_EQ(ElementPoint(1), (Point{2022, 1011, 0}));
    double valueR = -1;
    importer.Call<void, int, double*>(12, 1, &valueR);
    EXPECT_EQ(valueR, 2.5);
    double valueU = -1, valueM = -1;
    int byGPScale = -1;
    EXPECT_EQ((importer.Call<int, int, double*, double*, int*>(9, 0, &valueU, &valueM, &byGPScale)), 0);
    EXPECT_EQ((importer.Call<int, int, double*, double*, int*>(9, 1, &valueU, &valueM, &byGPScale)), 1);
    EXPECT_EQ(valueU, 50.0);
    EXPECT_EQ(valueM, 0.5);
    EXPECT_EQ(byGPScale, 2);
    EXPECT_EQ(Layer(), "12 12");

    ASSERT_EQ(importer.ReadNext(), 2);
    EXPECT_STREQ(importer.Call<const char*>(18), "text");
    EXPECT_EQ(PointFrom(19), (Point{2040, 1030, 0}));
    int valueD = 0, valueF = 0;
    double scaledH = 0;
    importer.Call<void, int*, int*, double*, double*>(20, &valueD, &valueF, &scaledH, &valueU);
    EXPECT_EQ(valueD, 3);
    EXPECT_EQ(valueF, 4);
    EXPECT_EQ(scaledH, 1.0);
    EXPECT_EQ(valueU, 100.0);

    EXPECT_EQ(importer.ReadNext(), 0);
    EXPECT_EQ(importer.ReadNext(), 0);
    importer.Close();
    EXPECT_EQ(importer.Call<double>(21), 500.0);
}

TEST_F(Slots, GiveTheExtentsInTheHostsAxes) {
    ASSERT_EQ((importer.Call<int, const char*, int, const char*, int, double, int>(0, file.Path(), 0, "", 128,
                                                                                   0.0, 0)),
              1);
    std::array<double, 4> bounds = {};
    EXPECT_EQ((importer.Call<int, double*, double*, double*, double*>(4, &bounds[0], &bounds[1], &bounds[2],
                                                                      &bounds[3])),
              1);
    EXPECT_EQ(bounds, (std::array<double, 4>{-1030, -2040, -1010, -2020}));
    EXPECT_EQ(importer.ReadNext(), 0);
}

TEST_F(Slots, TurnPointsOfTheHost) {
    importer.Call<void, int>(2, 32);
    Point point = {1, 2, 3};
    importer.Call<void, double*>(3, point.data());
    EXPECT_EQ(point, (Point{-2, 1, 3}));
}

TEST_F(Slots, ReplaceTheLayersByTheHostsName) {
    ASSERT_EQ(importer.Open(file.Path()), 1);
    importer.Call<void, const char*>(5, "import");
    ASSERT_EQ(importer.ReadNext(), 1);
    EXPECT_EQ(Layer(), "import 0");
    importer.Call<void, const char*>(5, nullptr);
    EXPECT_EQ(Layer(), "12 12");
}

TEST_F(Slots, FindNoSymbologyWhereNoneWasLoaded) {
    ASSERT_EQ(importer.Open(file.Path(), 1), 1);
    ASSERT_EQ(importer.ReadNext(), 1);
    EXPECT_EQ((importer.Call<int, int>(8, 1)), 0);
    unsigned int colour = 77;
    int pattern = 77;
    EXPECT_EQ((importer.Call<int, int, unsigned int*, int*>(11, 0, &colour, &pattern)), 0);
    importer.Call<void, int, int>(17, 5, 1);
    EXPECT_EQ((importer.Call<int, int>(15, 1)), 0);
    colour = 77;
    EXPECT_EQ((importer.Call<int, int, unsigned int*, int*>(16, 1, &colour, &pattern)), 0);
    EXPECT_EQ(colour, 77u);
}

TEST_F(Slots, ThrowTheInvalidArgumentThatTheHostKnows) {
    ASSERT_EQ(importer.Open(file.Path()), 1);
    ASSERT_EQ(importer.ReadNext(), 1);
    for (const int index : {-1, 2}) EXPECT_THROW(ElementPoint(index), std::invalid_argument) << index;
    EXPECT_EQ(importer.Call<int>(13), 2);
    EXPECT_EQ((importer.Call<int, int>(8, 99)), 0);  // without symbols the index is not looked at
}

TEST_F(Slots, DestroyNothingForNull) {
    module.Destroy(nullptr);
}

TEST_F(Slots, OpenNothingForAMissingFile) {
    using BoxHandler = int (*)(void*, const char*, unsigned int);
    const auto setHandler = module.Find<void(BoxHandler, void*)>("FrameworkSetMessageBoxHandler");
    std::string boxes;
    if (setHandler) {
        setHandler(
            [](void* context, const char* text, unsigned int style) {
                *static_cast<std::string*>(context) += std::to_string(style) + ": " + text + "\n";
                return 1;
            },
            &boxes);
    }
    EXPECT_EQ(importer.Open("no-such-file.vkm"), 0);
    EXPECT_EQ(importer.ReadNext(), 0);
    EXPECT_EQ(importer.Call<double>(21), 1000.0);
    if (setHandler) {
        EXPECT_EQ(boxes.rfind("48: ", 0), 0u) << boxes;
        EXPECT_NE(boxes.find("no-such-file.vkm"), std::string::npos) << boxes;
        EXPECT_EQ(boxes.find('\n'), boxes.size() - 1) << boxes;
        setHandler(nullptr, nullptr);
    }
}

}  // namespace
