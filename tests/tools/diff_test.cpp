// vkm diff: known edits, and what is no change.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "program_run.h"

namespace vemrado_test {
namespace {

constexpr const char* head = "&V x 1000 2000\n&R 1 1 0 0 1000 R\n";
constexpr const char* oldBody =
    "&U 1\n&L P 1 1 K=5\n L 2 1\n L 3 1 S=7\n L 4 1 K=6\n&L P 1 1 K=5\n L 1 9\n"
    "&U 2\n&T 5 5 '12/3' K=18\n&T 6 6 'a'\n&L P 8 8 S=3 K=9\n&K\n";

// One word for each change: +line1:5 is a line of layer 1 with the code 5 that was added.
std::string Changes(const std::string& oldMap, const std::string& newMap,
                    std::vector<std::string> options = {}) {
    const TestFolder folder;
    std::vector<std::string> arguments = {"diff", "--json", folder.Add("old.vkm", oldMap),
                                          folder.Add("new.vkm", newMap)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const RunResult run = RunVkm(arguments);
    std::istringstream lines(run.output);
    std::string words;
    for (std::string line; std::getline(lines, line);) {
        const nlohmann::json change = nlohmann::json::parse(line);
        const auto side = [&](const char* name) {
            const nlohmann::json& one = change[name];
            if (one.is_null()) return std::string();
            const char* member = one.contains("text") ? "text" : one.contains("S") ? "S" : "K";
            return ":" + (one[member].is_string() ? one[member].get<std::string>() : one[member].dump());
        };
        words += change["change"].get<std::string>() + " " + change["kind"].get<std::string>() +
                 change["layer"].dump() + side("old") + side("new") + " " + change["oldLine"].dump() + "," +
                 change["newLine"].dump() + "; ";
    }
    EXPECT_EQ(run.exitCode, words.empty() ? 0 : 1) << run.errors;
    return words;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

TEST(Diff, TellsWhatWasEdited) {
    const struct {
        const char* from;
        const char* to;
        const char* changes;
    } cases[] = {
        {" L 2 1\n", " L 2 1 K=6\n", "changed line1:5:6 5,5; "},
        {"&L P 1 1 K=5\n L 1 9", "&L P 1 1 K=6\n L 1 9 K=6", "changed line1:5:6 8,8; "},
        {"&L P 1 1 K=5\n L 1 9\n", "", "removed line1:5 8,null; "},
        {"&U 2\n", "&L P 7 7\n L 7 8\n&U 2\n", "added line1: null,10; "},
        {" L 1 9", " L 1 8", "removed line1:5 8,null; added line1:5 null,8; "},
        {"S=7", "S=7 U=50", "changed symbol1:7:7 6,6; "},
        {"S=3 K=9", "S=3 K=8", "changed symbol2:3:3 13,13; "},
        {"'12/3'", "'12/4'", "changed text2:12/3:12/4 11,11; "},
        {"K=18", "K=19", "changed text2:12/3:12/3 11,11; "},
        {"&T 5 5", "&T 5.03 5.03", "moved text2:12/3:12/3 11,11; "},
        {"&T 5 5", "&T 5.2 5", "removed text2:12/3 11,null; added text2:12/3 null,11; "},
        {"&U 2\n&T", "&U 3\n&T",
         "removed symbol2:3 13,null; added symbol3:3 null,13; removed text2:12/3 11,null; "
         "removed text2:a 12,null; added text3:12/3 null,11; added text3:a null,12; "},
    };
    const std::string whole = std::string(head) + oldBody;
    for (const auto& [from, to, changes] : cases)
        EXPECT_EQ(Changes(whole, Replaced(whole, from, to)), changes) << to;
    EXPECT_EQ(Changes(whole, Replaced(whole, "&T 5 5", "&T 5.2 5"), {"--tolerance", "0.5"}),
              "moved text2:12/3:12/3 11,11; ");
}

TEST(Diff, OrderDirectionCutsAndFormatsAreNoChange) {
    const std::string same =
        "&R 9 9 9 9 1e3 A\n&* rewritten\n&U 2\n&L P 1008 2008.000 K=9 S=+3\n&T 1006 2006 \"a\"\n&U 1\n"
        "&L P 1001 2009 K=5\n L 1001 2001\n&L P 1004 2001 K=6\n L 1003 2001 S=7\n&L P 1003 2001 K=5\n"
        "\tL 1.002e3 2001\n&L P 1002 2001 K=5\n L 1001 2001\n&U 2\n&T +1005.00 2005 %12/3%\n x K=18\n&K\n";
    EXPECT_EQ(Changes(std::string(head) + oldBody, same), "");
}

TEST(Diff, ExitCodesAreThoseOfDiff) {
    const TestFolder folder;
    const std::string whole = folder.Add("whole.vkm", std::string(head) + oldBody);
    const std::string cut = folder.Add("cut.vkm", std::string(head) + "&U 1\n&L P 1 1\n");
    EXPECT_EQ(RunVkm({"diff", whole}).exitCode, 2);
    EXPECT_EQ(RunVkm({"diff", whole, whole + "x"}).exitCode, 3);
    const RunResult run = RunVkm({"diff", cut, whole});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_NE(run.errors.find("cut.vkm: incomplete"), std::string::npos) << run.errors;
    const RunResult equal = RunVkm({"diff", whole, whole});
    EXPECT_EQ(std::to_string(equal.exitCode) + equal.output, "0no changes\n");
}

}  // namespace
}  // namespace vemrado_test
