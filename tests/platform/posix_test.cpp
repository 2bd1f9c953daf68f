#if !defined(_WIN32)

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "framework/framework.h"
#include "memory_files.h"
#include "platform/memory_faults.h"
#include "platform/platform.h"
#include "platform/reg_file.h"
#include "temporary_directory.h"

namespace vemrado::platform {
namespace {

using vemrado_test::MemoryFiles;
using vemrado_test::TemporaryDirectory;

std::string Content(const std::string& path) {
    File file;
    if (!file.Open(path.c_str())) {
        char text[1024];
        OpenFailureText("", file.LastError(), text, sizeof text);
        return text;
    }
    char content[4096];
    const int64_t count = file.Read(content, sizeof content);
    return std::string(content, static_cast<size_t>(count));
}

TEST(PosixFileTest, FindsFilesByOtherSpellings) {
    const TemporaryDirectory directory;
    directory.Write("Data/VKMSym/WKOKES.COL", "colours");
    directory.Write("Data/back\\slash", "as written");
    directory.Write("Data/two", "lower");
    directory.Write("Data/TWO", "upper");
    directory.Write("Data/TWo", "mixed");
    const struct {
        const char* path;
        const char* content;
    } cases[] = {
        {"Data/VKMSym/WKOKES.COL", "colours"},
        {"Data\\VKMSym\\WKOKES.COL", "colours"},
        {"Data\\\\VKMSym\\WKOKES.COL", "colours"},
        {"data/vkmsym/wkokes.col", "colours"},
        {"DATA\\vkmSYM/.\\wkokes.COL", "colours"},
        {"Data/../data\\VKMSYM\\Wkokes.col", "colours"},
        {"Data/back\\slash", "as written"},
        {"data/two", "lower"},
        {"data/tWO", "upper"},
        {"Data/VKMSym/WKOKES.CO", ": No such file or directory"},
        {"Data\\VKMSym\\WKOKES.COLX", ": No such file or directory"},
        {"Data\\VKMSym\\WKOKES.COL\\x", ": No such file or directory"},
        {"data/vkmsym", ": Is a directory"},
        {"Data\\", ": Is a directory"},
    };
    for (const auto& test : cases) EXPECT_EQ(Content(directory.Path(test.path)), test.content) << test.path;
    EXPECT_EQ(Content(""), ": No such file or directory");
    EXPECT_EQ(Content(std::string(5000, '\\')), ": File name too long");

    // Names that exist, but lead in a circle.
    std::filesystem::create_symlink("Loop", directory.Path("Data/Loop"));
    for (const char* path : {"Data/Loop", "Data\\Loop", "Data/lOOP"}) {
        EXPECT_EQ(Content(directory.Path(path)), ": Too many levels of symbolic links") << path;
    }
}

TEST(PosixFileTest, ReportsAFailedReadOfTheSystem) {
    File file;
    ASSERT_TRUE(file.Open("/proc/self/mem"));
    char byte;
    EXPECT_EQ(file.Read(&byte, 1), -1) << "nothing is mapped at 0";
    EXPECT_NE(file.LastError(), 0);
}

TEST(PosixFileTest, KeepsAwayFromFilesThatAreBeingWritten) {
    const TemporaryDirectory directory;
    const std::string path = directory.Write("map.vkm", "map");
    const int writer = open(path.c_str(), O_RDWR);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    EXPECT_EQ(Content(path), ": The file is locked by another program");
    ASSERT_EQ(flock(writer, LOCK_SH), 0);
    EXPECT_EQ(Content(path), "map");
    {
        File reader;
        ASSERT_TRUE(reader.Open(path.c_str()));
        EXPECT_EQ(flock(writer, LOCK_EX | LOCK_NB), -1);
    }
    EXPECT_EQ(flock(writer, LOCK_EX | LOCK_NB), 0) << "closing gives the lock back";
    close(writer);
}

TEST(PosixFileTest, ReadsPipesToTheirEnd) {
    const TemporaryDirectory directory;
    const std::string path = directory.Path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] {
        const int pipe = open(path.c_str(), O_WRONLY);
        for (int piece = 0; piece < 3; ++piece) EXPECT_EQ(write(pipe, "0123456789", 10), 10);
        close(pipe);
    });
    File file;
    ASSERT_TRUE(file.Open(path.c_str()));
    EXPECT_EQ(file.Length(), 0);
    char piece[25];
    EXPECT_EQ(file.Read(piece, 25), 25) << "over the pieces that were written";
    EXPECT_EQ(file.Read(piece, 25), 5);
    EXPECT_EQ(file.Read(piece, 25), 0);
    EXPECT_EQ(file.Seek(0, Origin::start), -1);
    writer.join();
}

// --- Registry ---

class PosixRegistryTest : public testing::Test {
  protected:
    PosixRegistryTest() {
        unsetenv("VEMRADO_REGISTRY");
        setenv("XDG_CONFIG_HOME", directory.Path("config").c_str(), 1);
        setenv("HOME", directory.Path("home").c_str(), 1);
    }
    ~PosixRegistryTest() override {
        unsetenv("VEMRADO_REGISTRY");
        unsetenv("XDG_CONFIG_HOME");
        FrameworkSetDataDirectory(nullptr);
    }

    static std::string RegistryFile(const std::string& text) {
        return "Windows Registry Editor Version 5.00\n[HKEY_LOCAL_MACHINE\\Software\\Zorvat\\Ini\\Velka]\n"
               "\"LocalPath\"=\"" +
               text + "\"\n";
    }

    static std::string LocalPath(const char* name = "localpath") {
        constexpr const char* key = "SOFTWARE\\Zorvat\\Ini\\velka";
        uint32_t type = 0;
        uint32_t size = 0;
        if (!QueryRegistryValue(RegistryRoot::localMachine, key, name, &type, nullptr, &size)) return "none";
        EXPECT_EQ(type, registryString);
        std::string text(size, '?');
        EXPECT_TRUE(QueryRegistryValue(RegistryRoot::localMachine, key, name, &type, text.data(), &size));
        EXPECT_EQ(text.back(), '\0');
        uint32_t room = size - 1;
        EXPECT_FALSE(QueryRegistryValue(RegistryRoot::localMachine, key, name, &type, text.data(), &room));
        text.pop_back();
        return text;
    }

    TemporaryDirectory directory;
};

TEST_F(PosixRegistryTest, TakesTheFirstFileThatExists) {
    EXPECT_EQ(LocalPath(), "none");
    directory.Write("home/.config/vemrado/registry.reg", RegistryFile("home"));
    EXPECT_EQ(LocalPath(), "none") << "the configuration directory is set";
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(LocalPath(), "home");
    unsetenv("HOME");
    EXPECT_EQ(LocalPath(), "none");
    setenv("XDG_CONFIG_HOME", directory.Path("config").c_str(), 1);
    directory.Write("config/vemrado/registry.reg", RegistryFile("config"));
    EXPECT_EQ(LocalPath(), "config");
    setenv("VEMRADO_REGISTRY", directory.Path("own.reg").c_str(), 1);
    EXPECT_EQ(LocalPath(), "config") << "the named file does not exist";
    setenv("VEMRADO_REGISTRY", std::string(5000, 'x').c_str(), 1);
    EXPECT_EQ(LocalPath(), "config") << "no file has such a name";
    setenv("VEMRADO_REGISTRY", directory.Path("config").c_str(), 1);
    EXPECT_EQ(LocalPath(), "none") << "the named file cannot be read";
    setenv("VEMRADO_REGISTRY", directory.Write("own.reg", RegistryFile("own")).c_str(), 1);
    EXPECT_EQ(LocalPath(), "own");
    MemoryFiles files;
    files[directory.Path("own.reg")] = RegistryFile("provided");
    EXPECT_EQ(LocalPath(), "provided");
    files[directory.Path("own.reg")] = RegistryFile(std::string(300000, 'x'));
    EXPECT_EQ(LocalPath(), std::string(300000, 'x'));
    memoryCallsLeft = 1;
    EXPECT_EQ(LocalPath(), "none") << "no memory for more than the first piece";
    memoryCallsLeft = -1;
    files.failingRead = files.reads + 2;
    EXPECT_EQ(LocalPath(), "none");
    // Read no further than the step that passes the limit: 64 KiB, four times as much with each read.
    files[directory.Path("own.reg")] += std::string(5 * largestRegFile, '\n');
    files.reads = 0;
    EXPECT_EQ(LocalPath(), "none");
    EXPECT_EQ(files.reads, 6);
}

TEST_F(PosixRegistryTest, TheHostsDataDirectoryStandsForBothPaths) {
    setenv("VEMRADO_REGISTRY", directory.Write("own.reg", RegistryFile("own")).c_str(), 1);
    FrameworkSetDataDirectory("/srv/maps");
    EXPECT_EQ(LocalPath(), "/srv/maps");
    EXPECT_EQ(LocalPath("SharedPath"), "/srv/maps");
    EXPECT_EQ(LocalPath("OtherPath"), "none");
    FrameworkSetDataDirectory(nullptr);
    EXPECT_EQ(LocalPath(), "own");
    EXPECT_EQ(LocalPath("SharedPath"), "none");
}

// --- Memory ---

TEST(PosixMemoryTest, RegionsAreAlignedAndZeroed) {
    for (const size_t size : {65536u, 131072u, 655360u}) {
        auto* region = static_cast<unsigned char*>(ReserveRegion(size));
        ASSERT_NE(region, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(region) % regionGranularity, 0u);
        for (size_t at = 0; at < size; at += 512) ASSERT_EQ(region[at]++, 0);
        ReleaseRegion(region, size);
    }
    EXPECT_EQ(ReserveRegion(~size_t{0xFFFF}), nullptr);
}

}  // namespace
}  // namespace vemrado::platform

#endif
