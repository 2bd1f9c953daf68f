#include "draw/style.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "draw/clip.h"
#include "zrv320/zrv320.h"

namespace vemrado::draw {
namespace {

std::vector<PatternElement> Ended(std::vector<PatternElement> elements) {
    elements.push_back({0, 0, '@'});
    return elements;
}

std::string Shown(const std::vector<double>& numbers) {
    std::ostringstream text;
    for (const double number : numbers) text << (text.tellp() > 0 ? " " : "") << number;
    return text.str();
}

// The pattern is written as signed lengths: a gap is negative.
std::string Dashes(const std::vector<double>& lengths) {
    std::vector<PatternElement> elements;
    for (const double length : lengths)
        elements.push_back({std::abs(length), 0, std::signbit(length) ? uint8_t{0} : uint8_t{1}});
    Pen pen;
    pen.width = 0.25;
    SetDashes(pen, Ended(elements).data());
    if (pen.invisible) return "invisible";
    return pen.dashes.empty() ? "continuous" : Shown(pen.dashes) + " from " + Shown({pen.dashOffset});
}

TEST(Dashes, FollowThePatternAsItRepeats) {
    const struct {
        std::vector<double> pattern;
        const char* expected;
    } cases[] = {
        {{2, -1}, "2 1 from 0"},
        {{2, -1, 0.5, -1}, "2 1 0.5 1 from 0"},
        {{1.5, -0.5, 0.25},
         "1.75 0.5 from 0.25"},   // the end of one round and the beginning of the next are one dash
        {{-1, 2}, "2 1 from 2"},  // begins with the gap
        {{-1, 2, -3}, "2 4 from 5"},
        {{1, 1, -2, -2}, "2 4 from 0"},
        {{0, -1}, "0.25 1 from 0"},  // a dot as long as the pen is wide
        {{}, "continuous"},
        {{3}, "continuous"},
        {{-3}, "invisible"},
        {{1e-9, -1e-9}, "continuous"},
        {{INFINITY, -1, 2}, "2 1 from 2"},
        {{NAN, -NAN}, "continuous"},
        {{1e308, -1, 1e308, -1}, "continuous"},
    };
    for (const auto& test : cases) EXPECT_EQ(Dashes(test.pattern), test.expected) << Shown(test.pattern);
}

TEST(SymbolShape, SumsTheDifferencesAndParts) {
    const auto elements = Ended({{1, 1, 0}, {1, 0, 1}, {0, 1, 1}, {5, 5, 0}, {0, -1, 1}, {9, 9, 0}});
    const SymbolShape shape = MakeSymbolShape("symbol-1", elements.data());
    ASSERT_EQ(shape.strokes.size(), 2U);  // a last move draws nothing
    EXPECT_EQ(shape.strokes[0].size(), 3U);
    EXPECT_EQ(shape.strokes[1].back().x, 7);
    EXPECT_EQ(shape.strokes[1].back().y, 6);
    EXPECT_TRUE(MakeSymbolShape("none", nullptr).strokes.empty());
    const auto endless = Ended({{0, 0, 0}, {1, 0, 1}, {NAN, 0, 1}, {1, 1, 1}});
    EXPECT_EQ(MakeSymbolShape("bad", endless.data()).bounds.maxX, 1);
}

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
