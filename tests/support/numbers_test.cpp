#include "support/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "c_library.h"

namespace vemrado {
namespace {

// A copy of exactly the text's size and no terminator, so that the address sanitizer sees a read past it.
class Exact {
  public:
    explicit Exact(const std::string& text) : size(text.size()), copy(std::make_unique<char[]>(size)) {
        text.copy(copy.get(), size);
    }
    std::string_view View() const { return {copy.get(), size}; }

  private:
    size_t size;
    std::unique_ptr<char[]> copy;
};

// A copy in a buffer of just the room that is asked for, between characters that do not belong to the text.
class Buffered {
  public:
    Buffered(const std::string& text, char neighbour) : size(text.size()) {
        buffer.assign(numbers::loadedBefore + numbers::loadedCharacters + 1, neighbour);
        if (size > numbers::loadedCharacters) buffer.append(size - numbers::loadedCharacters, neighbour);
        text.copy(buffer.data() + numbers::loadedBefore, size);
    }
    std::string_view View() const { return std::string_view(buffer).substr(numbers::loadedBefore, size); }

  private:
    size_t size;
    std::string buffer;
};

void ExpectSameValue(const std::string& text, double actual, double expected) {
    if (std::bit_cast<uint64_t>(actual) == std::bit_cast<uint64_t>(expected)) return;
#if defined(_WIN32)
    if (std::isnan(actual) && std::isnan(expected)) return;  // that library makes other low bits of nan(123)
#endif
    ADD_FAILURE() << '"' << text << "\" gave " << actual << " and not " << expected;
}

void ExpectSameReal(const std::string& text) {
    const double expected = StandardStrtod(text.c_str());
    ExpectSameValue(text, ParseReal(Exact(text).View()), expected);
    if (text.empty()) return;
    constexpr std::string_view neighbours = "7. -";
    ExpectSameValue(text, ParseBufferedReal(Buffered(text, neighbours[text.size() % 4]).View()), expected);
}

// Two numbers at once, when they are of the form for it. Returns whether they were.
bool ExpectSamePair(const std::string& firstText, const std::string& secondText) {
    double first = 0, second = 0;
    const Buffered firstCopy(firstText, '.'), secondCopy(secondText, '0');
    if (!numbers::ParsePlainPair(firstCopy.View(), secondCopy.View(), first, second)) return false;
    ExpectSameValue(firstText, first, StandardStrtod(firstText.c_str()));
    ExpectSameValue(secondText, second, StandardStrtod(secondText.c_str()));
    return true;
}

void ExpectSameInteger(const std::string& text) {
    const long expected =
        std::min(std::max(std::strtol(text.c_str(), nullptr, 10), long{INT_MIN}), long{INT_MAX});
    EXPECT_EQ(ParseInteger(Exact(text).View()), expected) << '"' << text << '"';
}

// Hands over texts that are separated by bars.
template <class Take>
void ForEach(std::string_view texts, Take take) {
    for (size_t at = 0; at <= texts.size();) {
        const size_t end = std::min(texts.find('|', at), texts.size());
        take(std::string(texts.substr(at, end - at)));
        at = end + 1;
    }
}

TEST(NumbersTest, ReadsRealsAsTheCLibraryDoes) {
    constexpr std::string_view texts =
        "|-|+|.|-.|+.5|.5|-.5|5.|-5.|0|-0|-0.0|+0|12abc|1,5|1.5.5|--1|+-1|-+1| 7|\t\n\v\f\r -7|"
        "\2407|742905.12|-1043051.345|99999999|99999999.99999999|00000000.00000001|123456789|"
        "1234567.123456789|9007199254740992|9007199254740993|90071992.54740993|"
        "9007199254740992.5|0.1|1e|1e+|1e-|1ex|1e5|1E5|1e+05|1.e5|.e5|e5|1e0005|1e999|-1e999|"
        "1e-999|-1e-999|0e999|1e99999999999999999999|1e-99999999999999999999|"
        "1.7976931348623157e308|1.7976931348623158e308|1.7976931348623159e308|"
        "179769313486231580793e289|2.2250738585072014e-308|2.2250738585072011e-308|4.9e-324|"
        "2.4703282292062327e-324|2.4703282292062328e-324|1e-400|"
        "0.00000000000000000000000000001e340|1000000000000000000000000000e-340|0x|0x.|0xg|-0x|"
        "0x1|0X1P4|0x.8|0x1.8p1|0x1p|0x1p+|0x1p+-9|0xap+-3166|0x1p-+9|1e+-9|0x1.fffffffffffff8p0|0x1."
        "fffffffffffff7p0|"
        "0x1.00000000000008p0|0x1.000000000000080000001p0|0x1p1024|0x1p-1074|0x1p-1075|"
        "0x1.8p-1075|0x1.000001p-1075|0x.0000000001p-1040|0x1p99999999999|-0x1p-99999999999|"
        "0x1.fffffffffffffp-1023|0x0.fffffffffffff8p-1022|0x0p5|0x123456789abcdef0123|inf|-INF|"
        "infinity|Infinitx|in|nan|-nan|NAN(|nan()|nan(123)|nan(0x7fffffffffffff)|nan(017)|"
        "nan(08)|nan(99999999999999999999999)|nan(abc_1)|nan(1 )|nan(1{)|nano|0x1p-1022junk";
    ForEach(texts, ExpectSameReal);
    ExpectSameReal(std::string("12") + '\0' + "34");
    ExpectSameReal("0." + std::string(400, '0') + "1e401");
    ExpectSameReal(std::string(400, '1') + "e-400");
    ExpectSameReal("1" + std::string(5000, '0'));
    EXPECT_EQ(ParseReal(std::string_view()), 0.0) << "a text that is nowhere";
    // Exactly half way between two doubles, and a digit beyond, with more digits than any buffer of the kind
    // holds.
    const std::string half = "9007199254740993" + std::string(".") + std::string(2000, '0');
    ExpectSameReal(half);
    ExpectSameReal(half + "1");
}

TEST(NumbersTest, ReadsIntegersAsTheCLibraryDoes) {
    ForEach(
        "|-|+|+-5|0|-0|12abc|  42|\v-42 |007|1.9|123456789|-123456789|2147483646|2147483647|2147483648|"
        "-2147483647|-2147483648|-2147483649|4294967296|99999999999|-99999999999|9223372036854775808|"
        "999999999999999999999999|0x10|000000000000000000000000000012|1 2|a1",
        ExpectSameInteger);
}

// Texts of every shape: what files hold, numbers of all magnitudes, and near misses.
class RandomText {
  public:
    std::string Coordinate() {
        std::string text(Below(2), '-');
        text += Digits(1 + Below(9));
        if (!Chance(5)) text += '.';
        if (text.back() == '.') text += Digits(Below(10));
        return text;
    }

    // Of the form that is read fast, or too long for it.
    std::string Plain() { return Digits(Below(9)) + '.' + Digits(Below(9)); }

    // The shortest text of a random double, or one of more digits than it needs.
    std::string Double() {
        const double value = std::bit_cast<double>((uint64_t{random()} << 32) | random());
        char text[64];
        std::snprintf(text, sizeof text, Chance(2) ? "%.17g" : "%.25e", value);
        return text;
    }

    // Close to the middle between two neighbouring doubles.
    std::string HalfWay() {
        const uint64_t mantissa = (uint64_t{1} << 53) + (((uint64_t{random()} << 32) | random()) >> 12);
        return std::to_string(mantissa * 2 + 1) + (Chance(2) ? "" : Digits(Below(4)) + "e-" + Digits(2));
    }

    std::string Noise() {
        constexpr std::string_view characters = "0123456789012345678900..--++eExXpPaAfFnNiI() \t\v_";
        std::string text;
        for (uint32_t length = Below(14); length != 0; --length) text += characters[Below(characters.size())];
        return text;
    }

    // Not among the denormal numbers, some of which older C libraries round wrongly.
    std::string Hex() {
        std::string text = "0x";
        const uint32_t length = 1 + Below(20);
        const uint32_t stop = Below(length);
        for (uint32_t index = 0; index < length; ++index) {
            if (index == stop) text += '.';
            text += "0123456789abcdef"[Below(16)];
        }
        return text.append(Chance(3) ? "" : "p-").append(std::to_string(800 + Below(130)));
    }

    uint32_t Below(size_t limit) { return static_cast<uint32_t>(random() % limit); }

  private:
    std::string Digits(uint32_t count) {
        std::string digits;
        for (; count != 0; --count) digits += static_cast<char>('0' + Below(10));
        return digits;
    }
    bool Chance(uint32_t oneIn) { return Below(oneIn) == 0; }

    std::mt19937 random{20240229};
};

// Ten million texts where nothing slows the comparison down.
#if defined(__SANITIZE_ADDRESS__) || defined(_WIN32)
constexpr int rounds = 60'000;
#else
constexpr int rounds = 2'000'000;
#endif

TEST(NumbersTest, AgreesWithTheCLibraryOnRandomTexts) {
    RandomText make;
    int pairs = 0;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const std::string coordinate = make.Coordinate(), noise = make.Noise();
        for (const std::string& text : {coordinate, noise, make.Double(), make.HalfWay(), make.Hex()}) {
            ExpectSameReal(text);
            ExpectSameInteger(text);
        }
        pairs += ExpectSamePair(coordinate, make.Plain());
        pairs += ExpectSamePair(make.Plain(), noise);
        pairs += ExpectSamePair(make.Plain(), make.Plain());
    }
    EXPECT_GT(pairs, rounds / 2);
}

TEST(NumbersTest, DoesNotDependOnTheLocale) {
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string kept = previous != nullptr ? previous : "C";
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr &&
        std::setlocale(LC_NUMERIC, "cs_CZ.UTF-8") == nullptr &&
        std::setlocale(LC_NUMERIC, "German") == nullptr) {  // as Windows names it
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    EXPECT_EQ(ParseReal("1.5"), 1.5);
    EXPECT_EQ(ParseReal("1.5e1"), 15.0);
    EXPECT_EQ(ParseReal("1,5"), 1.0);
    std::setlocale(LC_NUMERIC, kept.c_str());
}

}  // namespace
}  // namespace vemrado
