// What our own hosts share: messages, output files.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "client/atomic_output.h"
#include "client/data_directory.h"
#include "client/foreign_file.h"
#include "client/text_encoding.h"
#include "program_run.h"

namespace vemrado_test {
namespace {

using vemrado::client::AtomicOutput;
using vemrado::client::OutputError;

TEST(Messages, WordsAreWindows1250AndNamesMayBeUtf8) {
    EXPECT_EQ(vemrado::client::MessageToUtf8("/mapy/Čára.vkm: Soubor neobsahuje tabulku \x9A\xED\xF8"
                                             "ek \xE8"
                                             "ar."),
              "/mapy/Čára.vkm: Soubor neobsahuje tabulku šířek čar.");
}

size_t FileCount(const TestFolder& folder) {
    const std::filesystem::directory_iterator files(folder.Path(""));
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

TEST(AtomicOutput, AppearsWholeOrNotAtAll) {
    const TestFolder folder;
    const std::string path = folder.Add("map.svg", "old");
    chmod(path.c_str(), 0600);
    {
        AtomicOutput output(path);
        output.Write("half");
    }
    EXPECT_EQ(FileBytes(path), "old");
    EXPECT_EQ(FileCount(folder), 1u);

    AtomicOutput output(path);
    output.Write("new");
    EXPECT_EQ(FileBytes(path), "old");
    output.Commit();
    EXPECT_EQ(FileBytes(path), "new");
    EXPECT_EQ(FileCount(folder), 1u);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
}

TEST(AtomicOutput, KeepsLinksAndWritesDevicesDirectly) {
    const TestFolder folder;
    const std::string target = folder.Add("target", "old");
    ASSERT_EQ(symlink("target", folder.Path("link").c_str()), 0);
    AtomicOutput output(folder.Path("link"));
    output.Write("new");
    output.Commit();
    EXPECT_EQ(FileBytes(target), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));

    AtomicOutput device("/dev/null");
    device.Write("anything");
    device.Commit();
    EXPECT_EQ(std::filesystem::status("/dev/null").type(), std::filesystem::file_type::character);
}

TEST(AtomicOutput, FailuresNameFileAndReason) {
    const auto failure = [](const std::string& path) -> std::string {
        try {
            AtomicOutput output(path);
            output.Write("x");
            output.Commit();
        } catch (const OutputError& error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(failure("/dev/full"), "/dev/full: cannot be written: No space left on device");
    EXPECT_EQ(failure("/nowhere/map.png"), "/nowhere/map.png: cannot be written: No such file or directory");
    EXPECT_EQ(failure("/"), "/: cannot be written: Is a directory");
}

TEST(ForeignFile, IsToldFromOddMaps) {
    using namespace std::string_literals;
    const struct {
        std::string start;
        const char* kind;
    } cases[] = {
        // What the module reads, however odd.
        {"", ""},
        {" \n\r\n\x1A", ""},
        {"&V Lhota 1 2\n", ""},
        {"\xEF\xBB\xBF&V Lhota 1 2\n", ""},
        {"Katastr Lhota\r\n\f\r\n\t &*comment\r\n", ""},
        {"{a title}\n" + std::string(3000, '\n') + "&Lxyz P 1 2\n", ""},
        {"P 1 2\0 lost\n&K"s, ""},
        // What it would read as nothing.
        {"\x1F\x8B\x08\n&L P 1 2\n", "gzip"},
        {"PK\3\4", "zip"},
        {"\x7F"
         "ELF\2",
         "ELF"},
        {std::string(257, 'a') + "ustar", "tar"},
        {"\xFF\xFE&\0V\0"s, "UTF-16 text"},
        {"&\0V\0 \0a\0"s, "UTF-16 text"},
        {" {\"type\": 1}", "JSON"},
        {"<html>&amp;</html>", "XML"},
        {"1;2;3\n", "plain text without a record"},
        {"\1\2\3", "binary data"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(vemrado::client::ForeignKind(test.start), test.kind) << test.start;
        EXPECT_FALSE(*test.kind && vemrado::client::IsCertainlyVkm(test.start, true)) << test.start;
    }
}

TEST(DataDirectory, SampleIsFoundFromTheProgram) {
    const TestFolder folder;
    std::filesystem::create_directories(folder.Path("tree/data/symbology/VKMSym"));
    std::filesystem::create_directories(folder.Path("usr/share/vemrado/symbology/VKMSym"));
    using vemrado::client::FindSampleSymbology;
    EXPECT_EQ(FindSampleSymbology(folder.Path("tree/build/release/bin/vkm")),
              folder.Path("tree/data/symbology"));
    EXPECT_EQ(FindSampleSymbology(folder.Path("usr/bin/vkm")), folder.Path("usr/share/vemrado/symbology"));
    EXPECT_EQ(FindSampleSymbology(folder.Path("elsewhere/bin/vkm")), "");
}

}  // namespace
}  // namespace vemrado_test
