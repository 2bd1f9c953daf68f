// vkm-generate: the same map for the same seed, in forms that mean the same.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "program_run.h"

namespace vemrado_test {
namespace {

using nlohmann::json;

RunResult Generate(const std::vector<std::string>& arguments) {
    return RunVkm(arguments, {.program = GENERATE_PROGRAM});
}

std::string Map(const std::vector<std::string>& arguments) {
    const RunResult run = Generate(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    return run.output;
}

std::vector<json> Elements(const std::string& map) {
    const RunResult run = RunVkm({"dump", "-"}, {.input = map});
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    std::vector<json> elements;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) elements.push_back(json::parse(line));
    return elements;
}

std::string WithoutClosing(const std::string& map) {
    EXPECT_TRUE(map.ends_with("\n&K\n"));
    return map.substr(0, map.size() - 3);
}

TEST(Generate, MakesTheCommittedSample) {
    EXPECT_EQ(Map({"--seed", "4", "--sheets", "4"}), FileBytes(DATA_FOLDER "/sample-town.vkm"));
}

TEST(Generate, DependsOnSeedAndPlaceAlone) {
    const std::string two = Map({"--seed", "7", "--sheets", "2", "--threads", "1"});
    const std::string five = Map({"--seed", "7", "--sheets", "5", "--threads", "3"});
    EXPECT_TRUE(five.starts_with(WithoutClosing(two)));
    EXPECT_NE(Map({"--seed", "8", "--sheets", "2"}), two);
    const std::string sized = Map({"--seed", "7", "--size", "250k"});
    EXPECT_GE(sized.size(), 250u * 1024);
    EXPECT_TRUE(sized.starts_with(WithoutClosing(two).substr(0, 100000)));
}

TEST(Generate, OddFormsMeanTheSame) {
    for (const std::string scale : {"500", "1000", "2000"}) {
        for (const std::string form : {"", "--relative"}) {
            std::vector<std::string> arguments = {"--seed", "21", "--sheets", "3", "--scale", scale};
            if (!form.empty()) arguments.push_back(form);
            const std::string plain = Map(arguments);
            arguments.push_back("--stress");
            const std::string odd = Map(arguments);
            EXPECT_NE(odd, plain);
            EXPECT_EQ(Elements(odd), Elements(plain)) << scale << form;
        }
    }
}

TEST(Generate, RelativeCoordinatesAreTheSamePlaces) {
    const auto absolute = Elements(Map({"--seed", "3", "--sheets", "2"}));
    const auto relative = Elements(Map({"--seed", "3", "--sheets", "2", "--relative"}));
    ASSERT_EQ(absolute.size(), relative.size());
    for (size_t i = 0; i < absolute.size(); ++i) {
        if (absolute[i]["kind"] != "text") continue;
        EXPECT_EQ(absolute[i]["text"], relative[i]["text"]);
        EXPECT_NEAR(absolute[i]["point"][0].get<double>(), relative[i]["point"][0].get<double>(), 1e-6);
        EXPECT_NEAR(absolute[i]["point"][1].get<double>(), relative[i]["point"][1].get<double>(), 1e-6);
    }
}

// Codes of the sample symbology, by section.
std::map<char, std::set<int>> SymbologyCodes() {
    std::map<char, std::set<int>> codes;
    std::istringstream table(FileBytes(DATA_FOLDER "/symbology/VKMSym/DKM1_3.TB"));
    char section = 0;
    for (std::string line; std::getline(table, line);) {
        if (line.starts_with(':')) section = line[1];
        if (!line.empty() && line[0] >= '0' && line[0] <= '9') codes[section].insert(std::atoi(line.c_str()));
    }
    return codes;
}

TEST(Generate, SampleUsesLayersLettersAndKnownCodes) {
    const auto codes = SymbologyCodes();
    std::set<int> layers;
    std::set<std::string> letters;
    bool czech = false;
    for (const json& element : Elements(FileBytes(DATA_FOLDER "/sample-town.vkm"))) {
        layers.insert(element["layer"].get<int>());
        if (element["kind"] == "text") {
            czech = czech || element["text"].get<std::string>().find("ř") != std::string::npos;
            continue;
        }
        for (const json& vertex : element["elements"]) {
            letters.insert(vertex["type"].get<std::string>());
            const std::string code = vertex["K"].get<std::string>();
            EXPECT_TRUE(code.empty() || codes.at('L').contains(std::stoi(code))) << code;
            const int symbol = vertex["S"].get<int>();
            EXPECT_TRUE(symbol == 0 || codes.at('S').contains(symbol)) << symbol;
            const double x = vertex["point"][0].get<double>();
            const double y = vertex["point"][1].get<double>();
            EXPECT_TRUE(x > 950000 && x < 1300000 && y > 500000 && y < 900000) << vertex;
        }
    }
    EXPECT_EQ(layers, (std::set<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    EXPECT_EQ(letters, (std::set<std::string>{"C", "K", "L", "P", "R"}));
    EXPECT_TRUE(czech);
}

TEST(Generate, PlainLinesHaveTwoPoints) {
    const std::string map = Map({"--plain-lines", "--size", "300k"});
    for (const json& line : Elements(map)) ASSERT_EQ(line["elements"].size(), 2u);
}

TEST(Generate, RefusesWhatItCannotUse) {
    const TestFolder folder;
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        std::string errors;
    } cases[] = {
        {{}, 2, "either --sheets or --size"},
        {{"--sheets", "1", "--size", "1k"}, 2, "either --sheets or --size"},
        {{"--sheets", "0"}, 2, "--sheets does not take 0"},
        {{"--sheets", "1", "--scale", "750"}, 2, "--scale does not take 750"},
        {{"--size", "12X"}, 2, "--size does not take 12X"},
        {{"--size", "99999999999G"}, 2, "--size does not take"},
        {{"--sheets"}, 2, "--sheets needs a value"},
        {{"--sheets", "1", "--fast"}, 2, "unknown option --fast"},
        {{"--sheets", "1000000"}, 2, "at most"},
        {{"--sheets", "1", "-o", folder.Path("none/map.vkm")}, 1, folder.Path("none/map.vkm")},
        {{"--sheets", "1", "-o", "/dev/full"}, 1, "No space left"},
    };
    for (const auto& example : cases) {
        const RunResult run = Generate(example.arguments);
        EXPECT_EQ(run.exitCode, example.exitCode) << run.errors;
        EXPECT_NE(run.errors.find(example.errors), std::string::npos) << run.errors;
    }
}

}  // namespace
}  // namespace vemrado_test
