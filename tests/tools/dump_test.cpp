// What vkm dump writes: the same bits as the module gives, and texts in UTF-8.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "client/axis_orientation.h"
#include "json_writer.h"
#include "map/importer.h"
#include "program_run.h"

namespace vemrado_test {
namespace {

using nlohmann::json;
using vemrado::map::ElementKind;

uint64_t Bits(double value) {
    return std::bit_cast<uint64_t>(value);
}

// As docs/command-line.md says: a number, or the name of what JSON has no number for.
double Real(const json& value) {
    return value.is_string() ? std::strtod(value.get<std::string>().c_str(), nullptr) : value.get<double>();
}

void ExpectPoint(const json& point, vemrado::map::Point expected) {
    EXPECT_EQ(Bits(Real(point.at(0))), Bits(expected.x)) << point;
    EXPECT_EQ(Bits(Real(point.at(1))), Bits(expected.y)) << point;
}

std::string TypeName(int type) {
    return type == 0 ? "" : type == 1 ? "?" : std::string(1, static_cast<char>(type));
}

void ExpectElement(const json& element, const VkmElement& expected) {
    ExpectPoint(element.at("point"), {expected.x, expected.y});
    EXPECT_EQ(element.at("type"), TypeName(expected.type));
    EXPECT_EQ(element.at("K"), expected.code);
    EXPECT_EQ(element.at("S"), expected.symbolCode);
    EXPECT_EQ(Bits(Real(element.at("M"))), Bits(expected.valueM)) << element;
    EXPECT_EQ(Bits(Real(element.at("R"))), Bits(expected.valueR)) << element;
    EXPECT_EQ(Bits(Real(element.at("U"))), Bits(expected.valueU)) << element;
}

void ExpectText(const json& record, const vemrado::map::RawText& text) {
    EXPECT_EQ(record.at("text"), text.text);
    ExpectPoint(record.at("point"), text.point);
    EXPECT_EQ(record.at("D"), text.valueD);
    EXPECT_EQ(record.at("F"), text.valueF);
    EXPECT_EQ(Bits(Real(record.at("H"))), Bits(text.scaledH));
    EXPECT_EQ(record.at("K"), text.code);
    EXPECT_EQ(Bits(Real(record.at("U"))), Bits(text.valueU));
}

// The dump of a file beside the elements that the module gives.
void ExpectSameElements(const std::string& file, const std::string& dump, int axisOrientation) {
    vemrado::map::Importer importer;
    vemrado::map::OpenOptions options;
    options.fileName = file;
    options.axisOrientation = axisOrientation;
    ASSERT_TRUE(importer.Open(options));
    std::istringstream lines(dump);
    std::string line;
    for (ElementKind kind = importer.Next(); kind != ElementKind::none; kind = importer.Next()) {
        ASSERT_TRUE(std::getline(lines, line));
        const json record = json::parse(line);
        if (kind == ElementKind::line) {
            EXPECT_EQ(record.at("kind"), "line");
            EXPECT_EQ(record.at("layer"), importer.Line().layer);
            ASSERT_EQ(record.at("elements").size(), importer.Line().elements.size());
            for (size_t i = 0; i < importer.Line().elements.size(); ++i) {
                ExpectElement(record.at("elements").at(i), importer.Line().elements[i]);
            }
        } else {
            EXPECT_EQ(record.at("kind"), "text");
            EXPECT_EQ(record.at("layer"), importer.Text().layer);
            ExpectText(record, importer.Text());
        }
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

constexpr const char* awkwardMap =
    "&V 1 1000000.005 2000000.1\n&R 0 0 0 0 2880 r\n&U -3\n"
    "&L P 743210.12 1043210.555 K=1101 M=0.1 R=1e-320 S=-7 U=399.9999\n"
    "Q 1e999 -1e999 M=nan R=-0 U=1e22\nL 0.1 4503599627370496.5 K=\"\\x\nK 9007199254740993 1e15\n"
    "R -0 -0\n&T 1.0000000000000002 2 'quote \" back\\slash' K=4 D=-1 F=9 H=1.7 U=33.333333333333336\n"
    "&L\n&U 2\n&T 3 4 '' \n&K\n";

TEST(Dump, GivesTheModulesBits) {
    const TestFolder folder;
    const std::string map = folder.Add("map.vkm", awkwardMap);
    ExpectSameElements(map, RunVkm({"dump", map}).output, 1);
    for (const vemrado::client::AxisOrientation& orientation : vemrado::client::axisOrientations) {
        const std::string name(orientation.name);
        SCOPED_TRACE(name);
        const std::string byName = RunVkm({"dump", map, "--orientation", name}).output;
        ExpectSameElements(map, byName, orientation.code);
        EXPECT_EQ(RunVkm({"dump", map, "--orientation=" + std::to_string(orientation.code)}).output, byName);
        EXPECT_EQ(RunVkm({"dump", map, "--orientation=(" + name + ")"}).output, byName);
    }
}

void ExpectReadsBack(double value) {
    std::array<char, vemrado::tools::numberRoom> text{};
    const std::string written(text.data(), vemrado::tools::FormatReal(value, text.data()));
    EXPECT_EQ(Bits(Real(json::parse(written))), Bits(value)) << written;
}

TEST(Dump, NumbersReadBackToTheSameBits) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100'000; ++i) {
        const uint64_t bits = random();
        if (!std::isnan(std::bit_cast<double>(bits))) ExpectReadsBack(std::bit_cast<double>(bits));
        const double thousandths = static_cast<double>(static_cast<int64_t>(bits) >> (bits % 40)) / 1000.0;
        ExpectReadsBack(thousandths);
        ExpectReadsBack(std::nextafter(thousandths, 0.0));
    }
    for (const double limit :
         {0.0, -0.0, 9.0e12, 9007199254740.993, 5e-324, 1.7976931348623157e308, 0.0005, 1e-4,
          std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        ExpectReadsBack(limit);
    }
}

TEST(Dump, TextsBecomeUtf8) {
    struct Case {
        const char* encoding;
        std::string bytes;
        std::string utf8;
        int replaced;
    };
    const std::vector<Case> cases = {
        {"windows-1250", "\x8E\xEClu\x9Dov\xFD k\xF9\xF2", "Žěluťový kůň", 0},
        {"Windows-1250", "\x81x\x98", "\uFFFDx\uFFFD", 2},
        {"cp852", "\xA6\xD8lut\x98 k\x85\xE5", "Žělutś kůň", 0},
        {"iso-8859-2", "\xAE\xEClu\xBBov\xFD", "Žěluťový", 0},
        {"utf-8", "Žluťoučký", "Žluťoučký", 0},
        {"utf-8", "\xC3 \xED\xA0\x80 \xF4\x90\x80\x80 \xC0\x80 \xE2\x82",
         "\uFFFD \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD", 12},
        {"windows-1250", "a\tb\\c\x01\x1F\x7F", "a\tb\\c\x01\x1F\x7F", 0},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.utf8);
        RunSetting setting;
        setting.input = "&U 1\n&T 1 2 '" + example.bytes + "'\n&K\n";
        const RunResult result = RunVkm({"dump", "-", "--encoding", example.encoding}, setting);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(json::parse(result.output).at("text"), example.utf8);
        const std::string warned = std::to_string(example.replaced) + " bytes are no characters of";
        EXPECT_EQ(result.errors.find(warned) != std::string::npos, example.replaced > 0) << result.errors;
        EXPECT_EQ(RunVkm({"dump", "-", "-q", "-e", example.encoding}, setting).errors, "");
    }
}

}  // namespace
}  // namespace vemrado_test
