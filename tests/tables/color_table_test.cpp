// The colour table's entries and the order of their insertion.

#include "tables/color_table.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/memory_faults.h"
#include "symbology_files.h"
#include "tables/indexed_insertion.h"

namespace vemrado_test {
namespace {

using vemrado::CKokesColorTable;
using vemrado::CollectedMessages;

class ColorTable : public testing::Test {
  protected:
    int Read(const std::string& text) {
        table.Clear();
        files["WKOKES.COL"] = text;
        return table.ReadColorFile(SymbologyFiles::Path("WKOKES.COL").c_str());
    }

    SymbologyFiles files;
    CollectedMessages messages;
    CKokesColorTable table{messages};
};

TEST_F(ColorTable, ReadsColours) {
    const struct {
        const char* entries;
        int32_t number;
        uint32_t colour;
    } cases[] = {
        {"5=255,128,0", 5, 0x0080FF},
        {"5 = 255, 128, 0", 5, 0x0080FF},
        {"9=256,0,511", 9, 0xFF0000},
        {"9=-1,,,2,", 9, 0x0002FF},
        {"7=10", 7, 10},
        {"7", 7, 0},
        {"==7=1=2,3", 7, 0x0301},
        {"7=1\n===\n; 7=2\n\nx=9", 8, 1},
        {"7=1\n;see [width]\n7=2", 7, 1},
        {"1=1\n1=2", 2, 1},
        {"1=1\n1=2", 1, 2},
        {"5=5\n3=3", 6, 5},
        {"300=7\n2=1", 301, 7},
        {"-1=7\n16777216=8\n1=2", 1, 2},
        {"1=2", 257, 0},
        {"1=2", -1, 0},
        {"1=2\x1A\n1=3", 1, 2},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Read(std::string("[width]\n[White]\n") + each.entries), 1) << each.entries;
        EXPECT_EQ(table.GetColor(each.number), each.colour) << each.entries;
    }
}

TEST_F(ColorTable, ReadsWidths) {
    EXPECT_EQ(Read("[width]\n2=1,0.35\n3=x,1e-1,9\n4=5\n[white]\n1=1"), 1);
    const double widths[] = {0, 0, 0.35, 0.1, 0};
    for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(table.GetWidth(i), widths[i]);
    EXPECT_EQ(table.GetWidth(-1), 0);
    EXPECT_EQ(table.GetWidth(1000000), 0);

    EXPECT_EQ(Read("[width]\n2=1,0.35\n"), 0);
    EXPECT_EQ(table.GetWidth(2), 0) << "no widths are read without colours";
    EXPECT_EQ(Read("[white]\n2=1\n"), 0);
    EXPECT_EQ(table.GetColor(2), 1u);
}

TEST(IndexedInsertion, LeavesOutWhatFindsNoMemory) {
    vemrado::Array<uint32_t> values(10);
    vemrado::IndexedInsertion<uint32_t> insertion(values);
    insertion.Add(3, 7);
    vemrado::platform::memoryCallsLeft = 0;
    insertion.Add(vemrado::largestTableIndex, 8);
    vemrado::platform::memoryCallsLeft = -1;
    insertion.Finish();
    EXPECT_EQ(values.size(), 11u);
    EXPECT_EQ(values[3], 7u);
}

// Entries in any order come out as if each had been inserted by itself.
TEST(IndexedInsertion, IsTheSameAsOneInsertionAfterTheOther) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        const int32_t range = 1 << (random() % 10);
        const bool descending = round % 8 == 0;
        vemrado::Array<uint32_t> values(random() % 20, 4'000'000'000u);
        std::vector<uint32_t> naive(values.begin(), values.end());
        vemrado::IndexedInsertion<uint32_t> insertion(values);
        const auto entries = static_cast<uint32_t>(random() % 200);
        for (uint32_t i = 1; i <= entries; ++i) {
            const int32_t index = descending ? static_cast<int32_t>(entries - i)
                                             : static_cast<int32_t>(random() % 0xFFFFFFFFu) % range;
            insertion.Add(index, i);
            if (index < 0) continue;
            const size_t place = static_cast<size_t>(index);
            if (place > naive.size()) naive.resize(place);
            naive.insert(naive.begin() + index, i);
        }
        insertion.Finish();
        ASSERT_EQ(std::vector<uint32_t>(values.begin(), values.end()), naive) << round;
    }
}

}  // namespace
}  // namespace vemrado_test
