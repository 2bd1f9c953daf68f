#include "zrv320/zrv320.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

class DrawingLibraryTest : public testing::Test {
  protected:
    DrawingLibraryTest() { ZrvClearPatterns(); }
    ~DrawingLibraryTest() override { ZrvClearPatterns(); }
};

TEST_F(DrawingLibraryTest, KeepsWhatIsRegistered) {
    PatternElement dash[] = {{2.5, 0, 1}, {1.5, 0, 0}, {0, 0, '@'}};
    const PatternElement empty[] = {{0, 0, '@'}};
    std::string name = "L_7";
    EXPECT_EQ(setextpattline(dash, name.c_str()), 1);
    dash[0].x = 9;
    name = "S_1";
    EXPECT_EQ(setextpattline(empty, nullptr), 2);
    EXPECT_EQ(setextpattpoint(dash, name.c_str()), 1);
    EXPECT_EQ(setextpattline(nullptr, "none"), 0);

    EXPECT_EQ(ZrvLinePattern(1)[0].x, 2.5);
    EXPECT_EQ(ZrvLinePattern(1)[1].code, 0);
    EXPECT_EQ(ZrvLinePattern(1)[2].code, '@');
    EXPECT_STREQ(ZrvLinePatternName(1), "L_7");
    EXPECT_EQ(ZrvLinePattern(2)[0].code, '@');
    EXPECT_STREQ(ZrvLinePatternName(2), "");
    EXPECT_EQ(ZrvPointPattern(1)[0].x, 9);
    EXPECT_STREQ(ZrvPointPatternName(1), "S_1");
    for (const int number : {-1, 0, 3}) EXPECT_EQ(ZrvLinePattern(number), nullptr);
    for (const int number : {-1, 0, 2}) EXPECT_EQ(ZrvPointPatternName(number), nullptr);
}

TEST_F(DrawingLibraryTest, EndsWhereItsNumbersEnd) {
    const PatternElement pattern[] = {{1, 0, 1}, {0, 0, '@'}};
    ASSERT_EQ(setextpattpoint(pattern, "first"), 1);
    const PatternElement* first = ZrvPointPattern(1);
    for (int number = 2; number <= 32767; ++number) ASSERT_EQ(setextpattpoint(pattern, "more"), number);
    EXPECT_EQ(setextpattpoint(pattern, "too many"), 0);
    EXPECT_EQ(ZrvPointPattern(1), first) << "what was handed out stays";
}

TEST(CountryTest, FollowsTheEnvironment) {
    const struct {
        const char* country;
        const char* lcAll;
        const char* lcMessages;
        const char* lang;
        int expected;
    } cases[] = {
        {"0", "", "", "", 0},
        {"2", "cs_CZ", "", "", 2},
        {"1", "cs_CZ", "", "", 1},
        {"17", "", "", "", 17},
        {"cs", "", "", "", 0},
        {"de_AT", "", "", "", 2},
        {"fr", "cs", "", "", 1},
#if !defined(_WIN32)
        {"", "", "", "", 1},
        {"", "cs_CZ.UTF-8", "de_DE", "en_GB", 0},
        {"", "", "de_DE@euro", "cs_CZ", 2},
        {"", "", "", "cs", 0},
        {"", "C", "cs_CZ", "cs_CZ", 1},
        {"", "", "", "csb_PL", 1},
#endif
    };
    for (const auto& test : cases) {
        const auto set = [](const char* name, const char* value) {
#if defined(_WIN32)
            _putenv_s(name, value);
#else
            setenv(name, value, 1);
#endif
        };
        set("VEMRADO_COUNTRY", test.country);
        set("LC_ALL", test.lcAll);
        set("LC_MESSAGES", test.lcMessages);
        set("LANG", test.lang);
        EXPECT_EQ(GetZrvCountry(), test.expected) << test.country << '|' << test.lcAll << '|' << test.lang;
    }
}

}  // namespace
