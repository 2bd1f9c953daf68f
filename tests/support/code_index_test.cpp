#include "support/code_index.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory_faults.h"

namespace vemrado {
namespace {

constexpr int32_t codeCount = 20000;

TEST(CodeIndexTest, KeepsChainsShortWhateverTheStepOfItsCodes) {
    // Among them the numbers of buckets that the map goes through.
    for (const int32_t step : {1, -1, 2, 10, 1009, 2019, 4039, 8079, 16159, 32319, 65536}) {
        CodeIndex<int32_t> codes;
        codes.Prepare();
        for (int32_t i = 0; i < codeCount; ++i) codes.Add(i * step, i);
        EXPECT_LT(codes.LongestChain(), 12u) << "in steps of " << step;
        for (int32_t i = 0; i < codeCount; ++i) ASSERT_EQ(*codes.Find(i * step), i);
        EXPECT_EQ(codes.Find(codeCount * step), nullptr);
    }
}

TEST(CodeIndexTest, StaysAsItWasWithoutMemory) {
    int32_t most = 0;
    for (int requests = 0; requests < 8; ++requests) {
        CodeIndex<int32_t> codes;
        EXPECT_EQ(codes.Find(0), nullptr);
        int32_t count = 0;
        platform::memoryCallsLeft = requests;
        EXPECT_THROW(for (;; ++count) codes.Set(count, count), std::bad_alloc);
        platform::memoryCallsLeft = -1;
        for (int32_t i = 0; i < count; ++i) ASSERT_EQ(*codes.Find(i), i);
        EXPECT_EQ(codes.Find(count), nullptr);
        most = std::max(most, count);
    }
    EXPECT_GT(most, 1000);
}

}  // namespace
}  // namespace vemrado
