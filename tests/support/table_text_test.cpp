// Lines, fields and number pairs of the table files.

#include "support/table_text.h"

#include <gtest/gtest.h>

#include "memory_files.h"
#include "messages/collected_messages.h"
#include "platform/memory_faults.h"

namespace vemrado_test {
namespace {

using namespace vemrado;

std::string LinesOf(const std::string& text) {
    MemoryFiles files;
    files["t"] = text;
    CollectedMessages messages;
    TableFile file(messages);
    EXPECT_TRUE(file.Open("t"));
    std::string lines;
    for (std::string_view line; file.NextLine(line);) lines.append(line).append("|");
    return lines;
}

TEST(TableFile, GivesTrimmedLines) {
    EXPECT_EQ(LinesOf(" \t a b\r \n\n\v\fc\r\nlast"), "a b||c|last|");
    EXPECT_EQ(LinesOf(std::string("a \0b\nc", 6)), "a|c|");
    EXPECT_EQ(LinesOf("a\nb\x1A"
                      "c\nd"),
              "a|b|");
    EXPECT_EQ(LinesOf(""), "");
}

TEST(TableFile, CutsLongLines) {
    for (const size_t length : {TableFile::longestLine - 1, TableFile::longestLine,
                                TableFile::longestLine + 1, 3 * TableFile::longestLine + 5}) {
        const std::string line(length, 'x');
        const std::string cut = line.substr(0, TableFile::longestLine) + "|";
        EXPECT_EQ(LinesOf(line + "\nnext"), cut + "next|") << length;
        EXPECT_EQ(LinesOf(line), cut) << length;
        EXPECT_EQ(LinesOf("a" + std::string(1, '\0') + line + "\nnext"), "a|next|") << length;
        EXPECT_EQ(LinesOf(line + std::string(2, '\0') + line + "\nnext"), cut + "next|") << length;
    }
}

// The buffer has the size that the file had when it was opened.
TEST(TableFile, ReadsAFileThatGrows) {
    const std::string grown = std::string(3000, 'a') + "\n" + std::string(500000, 'b') + "\nlast";
    for (const int64_t memoryCalls : {-1, 0}) {
        MemoryFiles files;
        files["t"] = grown.substr(0, 3500);
        CollectedMessages messages;
        TableFile file(messages);
        ASSERT_TRUE(file.Open("t"));
        files.beforeRead = [&files, &grown] { files["t"] = grown; };
        platform::memoryCallsLeft = memoryCalls;
        std::string lines;
        for (std::string_view line; file.NextLine(line);) lines.append(line).append("\n");
        platform::memoryCallsLeft = -1;
        EXPECT_EQ(file.ReadFailed(), memoryCalls == 0);
        EXPECT_TRUE(lines == (memoryCalls == 0 ? grown.substr(0, 3001) : grown + "\n"));
    }
}

TEST(TableFile, ReportsFailures) {
    MemoryFiles files;
    MessageBoxes boxes;
    CollectedMessages messages;
    files["t"] = std::string(5'000'000, '\n');
    files.readLimit = 4'000'000;
    TableFile file(messages);
    ASSERT_TRUE(file.Open("t"));
    int lines = 0;
    for (std::string_view line; file.NextLine(line);) ++lines;
    EXPECT_GT(lines, 1'000'000);
    EXPECT_TRUE(file.ReadFailed());
    file.Rewind();
    std::string_view line;
    EXPECT_FALSE(file.NextLine(line));
    files["long"] = std::string(3 * TableFile::longestLine, 'x');
    files.readLimit = 2 * TableFile::longestLine + 9;
    ASSERT_TRUE(file.Open("long"));
    EXPECT_FALSE(file.NextLine(line));
    EXPECT_TRUE(file.ReadFailed());
    EXPECT_FALSE(file.Open("gone", "note"));
    messages.ShowMessages();
    EXPECT_EQ(boxes.texts.find("t: "), 0u);
    EXPECT_NE(boxes.texts.find("\ngone: "), std::string::npos);
    EXPECT_EQ(boxes.texts.substr(boxes.texts.size() - 7), "\nnote\n|") << boxes.texts;
}

TEST(Fields, PairsOfNumbers) {
    const struct {
        const char* line;
        const char* result;  // result, first, second and what is left
    } cases[] = {
        {"3,4", "1 3 4 "},
        {"3, 4", "1 3 4 "},
        {"3 ,4", "1 3 4 "},
        {"3 , 4", "1 3 4 "},
        {"3 4", "1 3  4"},
        {"3,", "0 3  "},
        {",4", "1 4  "},
        {"", "0   "},
        {"  \t", "0   "},
        {"3 -2,5", "1 3  -2,5"},
        {"3 x,5 6", "1 3 x 5 6"},
        {"3,4,5 6", "1 3 4 6"},
        {"3,,4 6", "1 3 4 6"},
        {"3,, 6", "1 3, 6 "},
        {",", "0   "},
        {"3 ,", "0 3  "},
        {",,3 4", "1 3  4"},
        {"3", "1 3  "},
        {"3,, 6 7", "1 3, 6 7"},
        {"\t3 \t,\t4\t5", "1 3 4 5"},
    };
    for (const auto& each : cases) {
        Fields fields(each.line);
        std::string_view first;
        std::string_view second;
        const int result = ReadNumberPair(fields, first, second);
        std::string text = std::to_string(result) + " ";
        text.append(first).append(" ").append(second).append(" ").append(fields.Rest());
        EXPECT_EQ(text, each.result) << each.line;
    }
}

TEST(Fields, KnowWhenNoneIsLeft) {
    Fields fields(" a\tb ");
    EXPECT_EQ(fields.Next(), "a");
    EXPECT_EQ(fields.Next(), "b");
    EXPECT_EQ(fields.Next(), "");
    EXPECT_EQ(fields.Rest(), "");
}

}  // namespace
}  // namespace vemrado_test
