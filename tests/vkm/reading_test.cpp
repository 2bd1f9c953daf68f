// The module against the checked reading: whatever the bytes, both see the same.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "memory_files.h"
#include "vkm/readings.h"

namespace vemrado_test {
namespace {

class Reading : public testing::Test {
  protected:
    void ExpectSame(const std::string& bytes, int orientation = 1) {
        files["map.vkm"] = bytes;
        const std::vector<std::string> module = ReadByModule("map.vkm", orientation);
        const std::vector<std::string> checked = ReadChecked(bytes, orientation, files.mostPerRead);
        const size_t common = std::min(module.size(), checked.size());
        for (size_t i = 0; i < common; ++i) {
            ASSERT_EQ(module[i].substr(0, 2000), checked[i].substr(0, 2000))
                << "element " << i << " of " << testing::PrintToString(bytes.substr(0, 400));
            ASSERT_TRUE(module[i] == checked[i]) << "element " << i;
        }
        ASSERT_EQ(module.size(), checked.size()) << checked.back() << "\n"
                                                 << testing::PrintToString(bytes.substr(0, 400));
    }

    MemoryFiles files;
};

const char smallFile[] =
    "&V x 600000 1000000\n&R 1 2 3 4 500 r\r\n&D S=1\n&* comment\n\n&U 7\n"
    "&L P 10.5 20.25 K=21900 S=4 M = 2.5\nC 11 21 R=3.25 U= 50\n x K=12 S=7\nL 12,5 1e2\n"
    "&Q not known\nR -1.5 +.5 K=abc\n&T 5 6 \"Nov\xE1 ulice\" K=1001 H=2 D=3\n H=9 F = 8 U=.25\n"
    "&U 123\n&T 1 2 'it''s'\n&G\n&S 1 2\n&L X\n&U 8\n&T 3 4 %50% F=3\n\n&K\nignored\n";

TEST_F(Reading, EveryPrefixOfASmallFile) {
    const std::string whole(smallFile, sizeof smallFile - 1);
    for (size_t length = 0; length <= whole.size(); ++length) {
        for (const int orientation : {1, 128}) ExpectSame(whole.substr(0, length), orientation);
        if (HasFatalFailure()) return;
    }
}

// Every value of every byte of a few records, and what matters to the reader at every place of more.
TEST_F(Reading, EverySingleByteChangeOfASmallFile) {
    const std::string fewRecords =
        "&V x 6 1\n&R 1 2 3 4 500 r\n&U 7\n&L P 1.5 2 K=9 S=4 M = 2\nC -1 2 R=3 U= 5\n x K=12\n"
        "&T 5 6 \"N\xE1\" K=1001 H=2\n F = 8 D=3\n&K\n";
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
    const std::pair<std::string, std::string> cases[] = {
        {fewRecords, everyByte}, {{smallFile, sizeof smallFile - 1}, {"\0\n\r\x1A\t &KTUVR='\"%5.-eX", 21}}};
    for (const auto& [whole, changes] : cases) {
        for (size_t at = 0; at < whole.size(); ++at) {
            for (const char change : changes) {
                std::string bytes = whole;
                bytes[at] = change;
                ExpectSame(bytes);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_F(Reading, LongAndOddLines) {
    const std::string head = "&U 1\n&L C 1 2\n";
    const std::string tail = "\n&K\n";
    for (const size_t length : {1021u, 1022u, 1023u, 1024u, 1025u, 2045u, 2046u, 2047u, 5000u, 300000u}) {
        std::string line = "C 3 4 ";
        for (int i = 0; line.size() < length; ++i) line.append("S=").append(std::to_string(i)).append(" ");
        line.resize(length);
        for (const char* end : {"\n", "\r\n", "\r\r\n", "\r", ""}) ExpectSame(head + line + end + tail);
        ExpectSame(line);
        ExpectSame("&T 1 2 '" + line + "'" + tail);
        ExpectSame(std::string("&L C 1 2 K=") + std::string(length, 'k') + tail);
        if (HasFatalFailure()) return;
    }
    std::string manyElements = head;
    for (int i = 0; i < 5000; ++i) manyElements += "C 3 4\n";
    ExpectSame(manyElements + head + tail);
    ExpectSame(std::string(1000000, 'x'));
    ExpectSame(std::string("&L C 1 2\nC 3\0 4 K=1\n&K\n", 22));
    ExpectSame(std::string(2000, '\0') + "\n&U 5\n&K");
    ExpectSame("&L C 1 2\n&T 1 2 'a'\n&\x1AK\nmore");
}

TEST_F(Reading, OddNumbers) {
    const char* const numbers[] = {"1e999",        "-1e999", "-",        "+.5",      "12abc",   "99999999999",
                                   "-99999999999", ".",      "1e",       "1e+",      "5.e-1",   "0x1p3",
                                   "0x",           "inf",    "-nan",     "1,5",      "--1",     "\v12",
                                   "1e-400",       "+",      "00012.50", "4.9e-324", "nan(x)y", "1_0"};
    for (const std::string number : numbers) {
        ExpectSame("&R 1 2 3 4 " + number + "\n&U " + number + "\n&L C " + number + " " + number +
                   " M=" + number + " S=" + number + " K=" + number + "\n&T 1 2 'x' D=" + number +
                   " H=" + number + "\n&K\n");
    }
}

// A random file out of parts that matter to the reader.
std::string RandomFile(std::mt19937& random) {
    // Each ends in a bar.
    constexpr std::string_view parts =
        "&L C |&L |&T |&U |&K|&V x |&R 1 2 3 4 500 R|&D|&* |&G|&S|&Q |&|C |K |L |P |R |x |"
        "K=21900 |M=2 |S = 12 |U =.5 |R= 7 |X=1 |H=2.5 |F=4 |D= |K=|742905.12 |-1043051.345 |"
        "1001 |7 |2 |8 |'text' |\"|%a b%|`|  |\t|1 |=|&L P 1.5 2.5 |&T 3 4 'n\xE1zev' K=1005|";
    std::string bytes;
    const size_t count = 1 + random() % 120;
    for (size_t i = 0; i < count; ++i) {
        const size_t end = parts.find('|', random() % parts.size());
        const size_t begin = parts.rfind('|', end - 1) + 1;
        bytes += parts.substr(begin, end - begin);
        if (random() % 3 == 0) bytes += random() % 4 == 0 ? "\r\n" : "\n";
        if (random() % 200 == 0) bytes += static_cast<char>(random() % 256);
    }
    return bytes;
}

TEST_F(Reading, ThousandsOfRandomFiles) {
    std::mt19937 random(20);
    const int orientations[] = {1, 2, 4, 8, 16, 32, 64, 128, 6};
    for (int i = 0; i < 5000; ++i) {
        ExpectSame(RandomFile(random), orientations[random() % std::size(orientations)]);
        if (HasFatalFailure()) return;
    }
}

// Longer than the buffer of the text file, read in pieces of any size.
TEST_F(Reading, FilesLongerThanTheBuffer) {
    std::mt19937 random(7);
    std::string bytes;
    while (bytes.size() < 900000) bytes += RandomFile(random);
    for (size_t at; (at = bytes.find("&K")) != std::string::npos;) bytes[at + 1] = 'U';
    for (const size_t most : {SIZE_MAX, size_t{1000}, size_t{262143}}) {
        files.mostPerRead = most;
        ExpectSame(bytes);
    }
}

}  // namespace
}  // namespace vemrado_test
