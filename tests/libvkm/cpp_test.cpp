// What vkm.hpp adds to vkm.h: checks and comparisons by functions of the caller's, which may throw.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "vemrado/vkm.hpp"

namespace {

std::string MapWith(const std::string& text) {
    return "&V S-JTSK 0 0\n&G 1 1\n&U 2\n&T 5 5 \"" + text + "\"\n&T 9 9 \"9\"\n&K\n";
}

struct Stopped {};

TEST(CppInterface, TellsFindingsAndChanges) {
    const std::string before = MapWith("1"), after = MapWith("2");
    const vkm::Reader old(before, "old.vkm"), now(after, "new.vkm");

    std::vector<std::string> rules;
    vkm::Check(vkm::Reader("&V S-JTSK 0 0\n&G 1 1\n&U 2\n&T 5x 5 \"1\"\n", "cut.vkm"),
               [&](const vkm::Finding& finding) { rules.emplace_back(finding.rule); });
    EXPECT_EQ(std::count(rules.begin(), rules.end(), "number-cut"), 1);
    EXPECT_EQ(std::count(rules.begin(), rules.end(), "no-closing-record"), 1);

    std::vector<std::uint64_t> lines;
    vkm::Diff(old, now, [&](const vkm::Change& change) {
        EXPECT_STREQ(change.kind, "text");
        lines.push_back(change.new_line != 0 ? change.new_line : change.old_line);
    });
    EXPECT_FALSE(lines.empty());
    for (const std::uint64_t line : lines) EXPECT_EQ(line, 4U);
}

TEST(CppInterface, FailuresAreThrown) {
    const std::string before = MapWith("1"), after = MapWith("2");
    const vkm::Reader old(before, "old.vkm"), now(after, "new.vkm");
    EXPECT_THROW(vkm::Diff(old, now, [](const vkm::Change&) { throw Stopped(); }), Stopped);
    try {
        vkm::Diff(
            old, now, [](const vkm::Change&) {}, -1);
        FAIL();
    } catch (const vkm::Error& error) {
        EXPECT_EQ(error.Status(), VKM_ERROR_ARGUMENT);
    }
    const vkm::Reader cut("&V S-JTSK 0 0\n&G 1 1\n", "cut.vkm");
    try {
        vkm::Diff(old, cut, [](const vkm::Change&) {});
        FAIL();
    } catch (const vkm::Error& error) {
        EXPECT_EQ(error.Status(), VKM_ERROR_READ);
        EXPECT_EQ(error.File(), "cut.vkm");
    }
}

}  // namespace
