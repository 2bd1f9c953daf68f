// The block file: positions, accesses and counted errors; and the shared string.

#include "symbols/block_file.h"

#include <gtest/gtest.h>

#include <random>

#include "memory_files.h"
#include "support/memory_pool.h"
#include "symbols/shared_string.h"

namespace vemrado_test {
namespace {

using vemrado::CBlockFile;
using vemrado::platform::Origin;

class BlockFile : public testing::Test {
  protected:
    BlockFile() {
        std::string& bytes = files["f"];
        std::mt19937 random(1);
        while (bytes.size() < 30000) bytes += static_cast<char>(random());
        file.SetName("f");
    }
    std::string Read(int64_t count) {
        std::string bytes(static_cast<size_t>(count), '?');
        const int64_t read = file.Read(bytes.data(), count);
        return read < 0 ? "error" : bytes.substr(0, static_cast<size_t>(read));
    }
    std::string Bytes(size_t from, size_t count) { return files["f"].substr(from, count); }

    MemoryFiles files;
    CBlockFile file;
};

TEST_F(BlockFile, ServesSmallReadsAndNearSeeksFromItsBuffer) {
    EXPECT_EQ(files.opens, 0) << "opened only when read";
    for (size_t i = 0; i < 300; ++i) ASSERT_EQ(Read(1), Bytes(i, 1));
    EXPECT_EQ(files.reads, 1);
    EXPECT_EQ(file.Seek(100, Origin::start), 100);
    EXPECT_EQ(Read(8), Bytes(100, 8));
    EXPECT_EQ(file.Seek(-108, Origin::current), 0);
    EXPECT_EQ(file.Seek(8000, Origin::current), 8000);
    EXPECT_EQ(Read(8), Bytes(8000, 8));
    EXPECT_EQ(files.reads, 1);
    EXPECT_EQ(files.opens, 1);

    EXPECT_EQ(file.Seek(100, Origin::start), 100);
    EXPECT_EQ(Read(20000), Bytes(100, 20000)) << "the rest goes past the buffer";
    EXPECT_EQ(files.reads, 2);
    EXPECT_EQ(file.Seek(-1, Origin::current), 20099);
    EXPECT_EQ(Read(2), Bytes(20099, 2)) << "no stale buffer";
}

TEST_F(BlockFile, ReopensWhereItLeftOff) {
    EXPECT_EQ(Read(10), Bytes(0, 10));
    file.ReleaseHandle();
    EXPECT_EQ(Read(9000), Bytes(10, 9000));
    EXPECT_EQ(files.opens, 2 + 0);
    EXPECT_EQ(file.Length(), 30000u);
    EXPECT_EQ(Read(5), Bytes(9010, 5));
}

TEST_F(BlockFile, EndsAndErrors) {
    files["f"] = "123456";
    EXPECT_EQ(Read(10), "123456");
    EXPECT_EQ(Read(10), "");
    EXPECT_EQ(file.Read(nullptr, 0), 0);
    EXPECT_EQ(file.TakeError(), 0u);
    files.readLimit = 0;
    file.Seek(0, Origin::start);
    EXPECT_EQ(Read(1), "error");
    EXPECT_EQ(Read(1), "error");
    EXPECT_EQ(file.TakeError(), 2u);
    EXPECT_EQ(file.TakeError(), 1u);
    EXPECT_EQ(file.TakeError(), 0u);
    files.readLimit = -1;
    EXPECT_EQ(Read(2), "12") << "a later read tries again";

    CBlockFile unnamed;
    EXPECT_EQ(unnamed.Seek(0, Origin::start), -1);
    EXPECT_EQ(unnamed.TakeError(), 0u);
    EXPECT_EQ(unnamed.Read(&unnamed, 1), -1);
    EXPECT_EQ(unnamed.Length(), 0u);
    EXPECT_EQ(unnamed.TakeError(), 2u);
    file.SetName(std::string(300, 'p').c_str());
    EXPECT_EQ(file.Name(), std::string(259, 'p'));
    EXPECT_EQ(file.EnsureOpen(), 0);
}

TEST_F(BlockFile, SeeksThatLeadNowhere) {
    constexpr int64_t beyond = int64_t{1} << 32;
    EXPECT_EQ(file.Seek(beyond, Origin::start), -1) << "without a buffer";
    EXPECT_EQ(file.TakeError(), 1u);
    EXPECT_EQ(Read(10), Bytes(0, 10));
    EXPECT_EQ(file.Seek(beyond, Origin::start), -1);
    EXPECT_EQ(file.Seek(-1, Origin::start), -1);
    EXPECT_EQ(file.Seek(beyond, Origin::end), -1);
    EXPECT_EQ(file.Seek(0, static_cast<Origin>(3)), -1);
    EXPECT_EQ(Read(10), Bytes(10, 10)) << "they changed nothing";
    EXPECT_EQ(file.Seek(-29990, Origin::end), 8192) << "inside the buffer: where the handle is";
    EXPECT_EQ(Read(3), Bytes(10, 3));
    files.readLimit = 0;
    EXPECT_EQ(Read(20000), Bytes(13, 8179)) << "what the buffer had";
    EXPECT_EQ(Read(5000), "error");
    EXPECT_EQ(file.TakeError(), 2u);
    EXPECT_EQ(file.TakeError(), 1u);

    files.readLimit = -1;
    file.SetName("f");
    EXPECT_EQ(Read(10), Bytes(0, 10));
    file.ReleaseHandle();
    const std::string bytes = files["f"];
    files.Remove("f");
    EXPECT_EQ(file.Seek(0, Origin::end), -1);
    EXPECT_EQ(file.Seek(20000, Origin::start), -1);
    EXPECT_EQ(file.Seek(0, Origin::start), -1) << "the buffer is gone";
    EXPECT_EQ(file.TakeError(), 1u);
    files["f"] = bytes;
    EXPECT_EQ(Read(2), Bytes(8192, 2)) << "behind what it had read";
}

// Any sequence of reads and seeks gives the bytes that a plain position in the file gives.
TEST_F(BlockFile, AgreesWithAPlainPosition) {
    std::mt19937 random(3);
    int64_t position = 0;
    for (int step = 0; step < 20000; ++step) {
        const int64_t size = static_cast<int64_t>(files["f"].size());
        if (random() % 2 == 0) {
            const int64_t count = random() % (random() % 4 == 0 ? 12000 : 40);
            const std::string expected =
                position < size ? Bytes(static_cast<size_t>(position), static_cast<size_t>(count)) : "";
            ASSERT_EQ(Read(count), expected) << step;
            position += static_cast<int64_t>(expected.size());
        } else {
            const bool relative = random() % 2 == 0;
            const int64_t target =
                random() % 5 == 0
                    ? static_cast<int64_t>(random() % 30000)
                    : std::clamp<int64_t>(position + static_cast<int64_t>(random() % 200) - 100, 0, size);
            ASSERT_EQ(
                file.Seek(relative ? target - position : target, relative ? Origin::current : Origin::start),
                target);
            position = target;
        }
        if (random() % 500 == 0) file.ReleaseHandle();
    }
    EXPECT_EQ(file.TakeError(), 0u);
}

TEST(SharedString, SharesAndReleasesItsBlock) {
    using namespace vemrado;
    const int32_t regions = stringPool.RegionCount();
    {
        CSharedString a;
        EXPECT_STREQ(a.Text(), "");
        a.Assign("name");
        CSharedString b(a);
        EXPECT_EQ(b.Text(), a.Text()) << "one block";
        b.Assign(b.Text() + 1);
        EXPECT_STREQ(b.Text(), "ame");
        b.Assign(nullptr);
        EXPECT_EQ(b.Length(), 3);
        const CSharedString& same = a;
        a = same;
        EXPECT_STREQ(a.Text(), "name");
        a.Assign("", 0);
        EXPECT_STREQ(a.Text(), "");

        static int lastError;
        lastError = 0;
        auto* const hook = sharedStringErrorHook;
        sharedStringErrorHook = [](SharedStringError error) { lastError = static_cast<int>(error); };
        b.Assign("x", -1);
        EXPECT_EQ(lastError, 2);
        EXPECT_STREQ(b.Text(), "ame");
        std::vector<CSharedString> copies(65534, b);
        CSharedString full(b);
        EXPECT_EQ(lastError, 1) << "the count is full";
        EXPECT_STREQ(full.Text(), "");
        sharedStringErrorHook = nullptr;
        const CSharedString copy(full);
        EXPECT_EQ(copy.Length(), 0);
        const CSharedString again(b);
        EXPECT_EQ(sharedStringError, SharedStringError::noMemory) << "kept where no hook clears it";
        full.Assign(nullptr, 1);
        sharedStringErrorHook = hook;
        full = b;
        EXPECT_EQ(sharedStringError, SharedStringError::none);
    }
    EXPECT_EQ(stringPool.RegionCount(), regions);
}

}  // namespace
}  // namespace vemrado_test
