#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "memory_files.h"
#include "platform/memory_faults.h"
#include "platform/platform.h"
#include "temporary_directory.h"

namespace vemrado::platform {
namespace {

using vemrado_test::MemoryFiles;
using vemrado_test::TemporaryDirectory;

std::string ReadAll(File& file) {
    std::string text;
    char piece[1000];
    int64_t count = 0;
    while ((count = file.Read(piece, sizeof piece)) > 0) text.append(piece, static_cast<size_t>(count));
    return count < 0 ? text + "<failed>" : text;
}

std::string FailureText(const std::string& path, size_t capacity = 1024) {
    File file;
    EXPECT_FALSE(file.Open(path.c_str()));
    std::string text(capacity, '\x7F');
    OpenFailureText(path.c_str(), file.LastError(), text.data(), capacity);
    EXPECT_LT(text.find('\0'), capacity);
    return text.c_str();
}

std::string Numbers(size_t count) {
    std::string text;
    for (size_t number = 0; text.size() < count; ++number) text += std::to_string(number) + ' ';
    return text.substr(0, count);
}

TEST(FileTest, ReadsSeeksAndTellsItsLength) {
    const TemporaryDirectory directory;
    const std::string bytes = Numbers(10000);
    File file;
    EXPECT_EQ(file.Read(nullptr, 0), -1) << "nothing is open";
    EXPECT_EQ(file.Length(), -1);
    EXPECT_EQ(file.Seek(0, Origin::start), -1);
    ASSERT_TRUE(file.Open(directory.Write("numbers", bytes).c_str()));
    EXPECT_EQ(file.Length(), 10000);
    EXPECT_EQ(ReadAll(file), bytes);
    EXPECT_EQ(file.Seek(-10, Origin::end), 9990);
    EXPECT_EQ(file.Seek(3, Origin::current), 9993);
    EXPECT_EQ(ReadAll(file), bytes.substr(9993));
    EXPECT_EQ(file.Seek(-1, Origin::start), -1);
    ASSERT_TRUE(file.Open(directory.Write("other", "x").c_str())) << "closes what was open";
    EXPECT_EQ(ReadAll(file), "x");
}

TEST(FileTest, AnOpenFailureNamesFileAndReasonInOneLine) {
    const TemporaryDirectory directory;
    const std::string missing = directory.Path("no such map.vkm");
    const std::string whole = FailureText(missing);
    EXPECT_EQ(whole.find(missing + ": "), 0u) << whole;
    EXPECT_GT(whole.size(), missing.size() + 2);
    EXPECT_NE(FailureText(directory.Path("")).size(), 0u) << "a directory is no file";
    EXPECT_EQ(FailureText(directory.Path("a\nb")).find('\n'), std::string::npos);

    // Where there is no room for both, the end of the path stays.
    const std::string reason = whole.substr(missing.size());
    const std::string shortened = FailureText(missing, reason.size() + 11);
    EXPECT_EQ(shortened, "...map.vkm" + reason);
    for (size_t capacity = 1; capacity < whole.size(); ++capacity) {
        EXPECT_EQ(FailureText(missing, capacity).size(), capacity - 1);
    }
}

TEST(FileTest, AsksTheProviderFirst) {
    const TemporaryDirectory directory;
    const std::string path = directory.Write("both", "disk");
    File file;
    {
        MemoryFiles files;
        files[path] = "provider";
        ASSERT_TRUE(file.Open(path.c_str()));
        EXPECT_EQ(file.Length(), 8);
        EXPECT_EQ(ReadAll(file), "provider");
        files[directory.Path("only")] = "";
        EXPECT_TRUE(file.Open(directory.Path("only").c_str()));
        EXPECT_EQ(file.Length(), 0);
        EXPECT_EQ(files.openFiles, 1);

        files.Remove(path);
        ASSERT_TRUE(file.Open(path.c_str()));
        EXPECT_EQ(ReadAll(file), "disk");
        EXPECT_EQ(files.openFiles, 0);

        files[path] = "provider";
        memoryCallsLeft = 0;
        EXPECT_FALSE(file.Open(path.c_str())) << "the provider's file is not silently replaced by the disk's";
        memoryCallsLeft = -1;
        EXPECT_EQ(files.openFiles, 0);
    }
    ASSERT_TRUE(file.Open(path.c_str()));
    EXPECT_EQ(ReadAll(file), "disk");
}

// The provider has no seek; random reads and seeks must still do what they do on a text in memory.
TEST(FileTest, SeeksInProvidedFiles) {
    MemoryFiles files;
    const std::string bytes = files["file"] = Numbers(20000);
    files.mostPerRead = 777;
    File file;
    ASSERT_TRUE(file.Open("file"));
    std::minstd_rand random(5);
    int64_t position = 0;
    for (int step = 0; step < 500; ++step) {
        const auto target = static_cast<int64_t>(random() % 22000);
        const auto origin = static_cast<Origin>(random() % 3);
        const int64_t base = origin == Origin::start ? 0 : origin == Origin::current ? position : 20000;
        ASSERT_EQ(file.Seek(target - base, origin), target);
        char piece[3000];
        const size_t count = random() % sizeof piece;
        const std::string expected =
            bytes.substr(std::min<size_t>(static_cast<size_t>(target), 20000), count);
        ASSERT_EQ(file.Read(piece, count), static_cast<int64_t>(expected.size()));
        ASSERT_EQ(std::string(piece, expected.size()), expected);
        position = target + static_cast<int64_t>(expected.size());
    }
    EXPECT_EQ(file.Seek(-1, Origin::start), -1);
    files.statedLength = 0;
    File other;
    ASSERT_TRUE(other.Open("file"));
    EXPECT_EQ(other.Seek(-5, Origin::end), 19995) << "a length that is not known is counted";
    ASSERT_TRUE(other.Open("file"));
    files.readLimit = 0;
    EXPECT_EQ(other.Seek(0, Origin::end), -1);
    files.statedLength = -1;
    EXPECT_EQ(other.Length(), -1);
    EXPECT_EQ(other.Seek(0, Origin::end), -1);
    other.Close();
    files.readLimit = -1;
    files.Remove("file");
    EXPECT_EQ(file.Seek(0, Origin::start), -1) << "it cannot be opened again";
    file.Close();
    EXPECT_EQ(files.openFiles, 0);
}

TEST(FileTest, ReportsAFailedReadAfterTheBytesBeforeIt) {
    MemoryFiles files;
    files["file"] = Numbers(1000);
    files.mostPerRead = 100;
    files.failingRead = 3;
    File file;
    ASSERT_TRUE(file.Open("file"));
    char piece[1000];
    EXPECT_EQ(file.Read(piece, 1000), 200);
    EXPECT_EQ(file.Read(piece, 1000), -1);
    EXPECT_NE(file.LastError(), 0);
    EXPECT_EQ(file.Read(piece, 1000), 800) << "the failure did not last";
}

}  // namespace
}  // namespace vemrado::platform
