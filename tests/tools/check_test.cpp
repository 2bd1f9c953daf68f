// vkm check: every rule's example in docs/check.md, and what programs get.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>

#include "program_run.h"

namespace vemrado_test {
namespace {

const std::regex pagePattern("### ([a-z-]+)\n[^#]*?```vkm\n([^]*?)```\n\n```text\n([^]*?)```\n");

// \xHH and \r are bytes, {x*300} is a character so many times.
std::string Unescaped(const std::string& example) {
    const std::regex escape(R"(\\x(..)|\\r|\{(.)\*([0-9]+)\})");
    std::string bytes;
    auto rest = example.cbegin();
    for (std::sregex_iterator match(example.begin(), example.end(), escape), end; match != end; ++match) {
        bytes.append(rest, (*match)[0].first);
        rest = (*match)[0].second;
        if ((*match)[1].matched) {
            bytes += static_cast<char>(std::stoi(match->str(1), nullptr, 16));
        } else if ((*match)[2].matched) {
            bytes.append(std::stoul(match->str(3)), match->str(2)[0]);
        } else {
            bytes += '\r';
        }
    }
    return bytes.append(rest, example.cend());
}

TEST(Check, FindsInEachExampleWhatTheDocumentSays) {
    const std::string document = FileBytes(DATA_FOLDER "/../docs/check.md");
    const TestFolder folder;
    std::string explained;
    for (std::sregex_iterator page(document.begin(), document.end(), pagePattern), end; page != end; ++page) {
        const std::string path = folder.Add("map.vkm", Unescaped(page->str(2)));
        std::string output = RunVkm({"check", path}).output;
        output = output.substr(0, output.find("\n\n") + 1);
        for (size_t at; (at = output.find(path)) != std::string::npos;)
            output.replace(at, path.size(), "map.vkm");
        EXPECT_EQ(output, page->str(3)) << page->str(1);
        EXPECT_NE(output.find("[" + page->str(1) + "]"), std::string::npos) << page->str(1);
        explained += page->str(1) + "\n";
    }
    const std::string rules = RunVkm({"check", "--rules"}).output;
    EXPECT_EQ(std::ranges::count(rules, '\n'), std::ranges::count(explained, '\n')) << "a page for each rule";
    EXPECT_EQ(RunVkm({"check", "--explain", "number-cut"}).output.find("number-cut\n\nWarning. A number"),
              0u);
}

constexpr const char* faultyMap =
    "&V x 744300.00 1040000.00\r\n&R 1 1 0 0 1000 A\r\n&U 4\r\n&L P 744843.45 1040333.49 S=3x S=4\r\n"
    " L 1 2,5\r\n L 1 2,5\r\n L 1 2,5\n&K\r\n";

TEST(Check, ProgramsGetOneObjectALine) {
    const RunResult run =
        RunVkm({"check", "--json", "--only", "number-cut,repeated-key", "-"}, {.input = faultyMap});
    EXPECT_EQ(run.exitCode, 1);
    const std::string first = run.output.substr(0, run.output.find('\n'));
    EXPECT_EQ(nlohmann::json::parse(first),
              nlohmann::json::parse(R"({"rule": "number-cut", "severity": "warning",
        "file": "standard input", "line": 4, "column": 27, "message": "'3x' is read as 3", "field": "S=3x",
        "point": [1040333.49, 744843.45]})"));
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 5);
}

// Boundaries that only cross enclose a parcel without a corner of its own.
TEST(Check, PlacesAreThoseOfTheFile) {
    const std::string crossing =
        "&V x 0 0\n&R 1 1 0 0 1000 A\n&U 1\n&L P 744810 1040300\n L 744810 1040400\n&L P 744890 1040300\n"
        " L 744890 1040400\n&L P 744800 1040310\n L 744900 1040310\n&L P 744800 1040390\n L 744900 1040390\n"
        "&U 2\n&T 744700 1040350 \"1\"\n";
    const struct {
        const char* rule;
        std::string map;
        std::string place;
    } cases[] = {
        {"parcel-without-number", crossing + "&K\n", "standard input:9:2: warning"},
        {"parcel-without-number", crossing, "0 errors, 0 warnings"},  // of a map that was cut off
        {"key-without-value", "&L P 1 2 S =  \t X=1\n&K\n",
         "standard input:1:10: error: the key field 'S =' has"},
    };
    for (const auto& [rule, map, place] : cases) {
        const RunResult run = RunVkm({"check", "--only", rule, "-"}, {.input = map});
        EXPECT_TRUE(run.output.starts_with(place)) << run.output;
    }
}

TEST(Check, SelectsRulesAndCountsAll) {
    const auto check = [](std::vector<std::string> options) {
        options.insert(options.begin(), "check");
        options.push_back("-");
        const RunResult run = RunVkm(options, {.input = faultyMap});
        const std::string total = run.output.substr(run.output.rfind('\n', run.output.size() - 2) + 1);
        return std::to_string(run.exitCode) + " " + std::to_string(std::ranges::count(run.output, '[')) +
               " " + total;
    };
    EXPECT_EQ(check({"--ignore", "number-cut,repeated-key", "--ignore", "map"}),
              "0 1 0 errors, 0 warnings, 1 note in 1 file\n");
    EXPECT_EQ(check({"--only", "mixed-line-ends", "--strict"}),
              "1 1 0 errors, 0 warnings, 1 note in 1 file\n");
    EXPECT_EQ(check({"--only", "number-cut", "--max", "2"}), "1 2 0 errors, 4 warnings, 0 notes in 1 file\n");
    EXPECT_EQ(RunVkm({"check", "--only", "nonsense", "-"}, {.input = ""}).exitCode, 2);
    EXPECT_EQ(RunVkm({"check", "/nowhere.vkm"}).exitCode, 1);
}

TEST(Check, WritesPagesAndLayers) {
    const TestFolder folder;
    for (const char* name : {"page.html", "points.geojson"}) {
        const std::string path = folder.Path(name);
        EXPECT_EQ(
            RunVkm({"check", "--only", "number-cut", "--max", "0", "-o", path, "-"}, {.input = faultyMap})
                .exitCode,
            1);
        const std::string bytes = FileBytes(path);
        EXPECT_NE(bytes.find("'2,5' is read as 2"), std::string::npos) << bytes;
    }
    EXPECT_EQ(RunVkm({"check", "-o", folder.Path("x.nonsense"), "-"}, {.input = faultyMap}).exitCode, 2);
}

// Generated maps with streets at odd angles, parcels of odd shapes, many parcels, several municipalities.
TEST(Check, FindsNothingInMapsThatAreWell) {
    EXPECT_EQ(RunVkm({"check", "--strict", DATA_FOLDER "/sample-town.vkm"}).output,
              "0 errors, 0 warnings, 0 notes in 1 file\n");
    for (const char* options :
         {"1 --plain-lines", "10 --scale 500 --seed 18 --relative", "12 --scale 500 --seed 5 --relative",
          "12 --scale 2000 --seed 17 --relative", "13 --seed 18", "17 --scale 500 --seed 19",
          "25 --scale 2000 --seed 36", "31 --scale 500 --seed 21", "32 --scale 2000 --seed 37 --relative"}) {
        std::istringstream words(options);
        std::vector<std::string> arguments = {"--sheets"};
        for (std::string word; words >> word;) arguments.push_back(word);
        const std::string map = RunVkm(arguments, {.program = GENERATE_PROGRAM}).output;
        EXPECT_EQ(RunVkm({"check", "--strict", "-"}, {.input = map}).output,
                  "0 errors, 0 warnings, 0 notes in 1 file\n")
            << options;
    }
}

}  // namespace
}  // namespace vemrado_test
