#include "draw/style.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "draw/clip.h"

namespace vemrado::draw {
namespace {

// Parts as "x,y x,y @ length before".
std::string Clipped(const std::vector<Point>& stroke) {
    std::ostringstream text;
    ClipStroke(stroke, Box{0, 0, 10, 10}, [&](std::span<const Point> part, double before) {
        for (const Point point : part) text << point.x << "," << point.y << " ";
        text << "@" << before << ";";
    });
    return text.str();
}

TEST(ClipStroke, KeepsThePlaceInTheDashPattern) {
    const struct {
        std::vector<Point> stroke;
        const char* expected;
    } cases[] = {
        {{{1, 1}, {9, 9}}, "1,1 9,9 @0;"},
        {{{-5, 5}, {15, 5}}, "0,5 10,5 @5;"},
        {{{5, 5}, {5, 15}, {8, 15}, {8, 5}}, "5,5 5,10 @0;8,10 8,5 @18;"},
        {{{-5, -5}, {-5, 15}, {5, 15}}, ""},
        {{{-2, 9}, {8, 19}}, ""},  // past the corner
        {{{-1e9, 5}, {1e9, 5}}, "0,5 10,5 @1e+09;"},
        {{{-4, 2}, {5, 2}, {5, 3}, {20, 3}}, "0,2 5,2 5,3 10,3 @4;"},
    };
    for (const auto& test : cases) EXPECT_EQ(Clipped(test.stroke), test.expected);
}

TEST(TextWidth, AddsTheLettersUp) {
    const double wide = TextWidth("Žďár", {}, 2);
    EXPECT_GT(wide, TextWidth("Žďá", {}, 2));
    EXPECT_NEAR(TextWidth("Žďár", {}, 4), 2 * wide, 1e-9);
    EXPECT_NEAR(TextWidth("mm", {}, 2), 2 * TextWidth("m", {}, 2), 1e-9);
}

}  // namespace
}  // namespace vemrado::draw
