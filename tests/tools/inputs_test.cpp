// Maps out of folders, lists, archives and compressed files, and archives that are not to be believed.

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program_run.h"
#include "temporary_directory.h"

using namespace vemrado_test;

namespace {

const std::string map = "&V 1 0 0\n&L P 1 2\n&L L 3 4\n&K\n";

std::string Little(uint64_t value, size_t bytes) {
    std::string text;
    for (size_t i = 0; i < bytes; ++i, value >>= 8) text += static_cast<char>(value & 0xFF);
    return text;
}

std::string Deflated(const std::string& bytes, int windowBits) {
    z_stream stream{};
    deflateInit2(&stream, 1, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, bytes.size()) + 64, '\0');
    std::string from = bytes;
    stream.next_in = reinterpret_cast<Bytef*>(from.data());
    stream.avail_in = static_cast<uInt>(from.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

struct ZipEntry {
    std::string name;
    std::string content;
    uint64_t claimedSize = UINT64_MAX;  // instead of the true one
    uint64_t place = UINT64_MAX;        // instead of the true one
};

std::string Zip(const std::vector<ZipEntry>& entries) {
    std::string bytes;
    std::string directory;
    for (const ZipEntry& entry : entries) {
        const std::string packed = Deflated(entry.content, -MAX_WBITS);
        const auto sum =
            crc32_z(0, reinterpret_cast<const Bytef*>(entry.content.data()), entry.content.size());
        const uint64_t size = entry.claimedSize == UINT64_MAX ? entry.content.size() : entry.claimedSize;
        const uint64_t place = entry.place == UINT64_MAX ? bytes.size() : entry.place;
        const std::string common = Little(20, 2) + Little(0, 2) + Little(8, 2) + Little(0, 4) +
                                   Little(sum, 4) + Little(packed.size(), 4) + Little(size, 4) +
                                   Little(entry.name.size(), 2);
        bytes += "PK\3\4" + common + Little(0, 2) + entry.name + packed;
        directory += "PK\1\2" + Little(20, 2) + common + Little(0, 12) + Little(place, 4) + entry.name;
    }
    const std::string counts = Little(entries.size(), 2) + Little(entries.size(), 2);
    const size_t begin = bytes.size();
    return bytes + directory + "PK\5\6" + Little(0, 4) + counts + Little(directory.size(), 4) +
           Little(begin, 4) + Little(0, 2);
}

std::string Tar(const std::vector<ZipEntry>& entries) {
    std::string bytes;
    for (const ZipEntry& entry : entries) {
        std::string header(512, '\0');
        char size[13];
        std::snprintf(size, sizeof size, "%011zo", entry.content.size());
        header.replace(0, entry.name.size(), entry.name).replace(124, 11, size).replace(156, 1, "0");
        header.replace(148, 8, "        ");
        unsigned sum = 0;
        for (const char byte : header) sum += static_cast<unsigned char>(byte);
        char octal[8];
        std::snprintf(octal, sizeof octal, "%06o", sum);
        header.replace(148, 7, octal, 7);
        bytes += header + entry.content + std::string((512 - entry.content.size() % 512) % 512, '\0');
    }
    return bytes + std::string(1024, '\0');
}

class Inputs : public testing::Test {
  protected:
    void Add(const std::string& name, const std::string& content) { folder.Write(name, content); }
    // Names and completeness of what info finds, without the folder.
    std::vector<std::string> Found(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"info", "--json"});
        const RunResult run = RunVkm(arguments);
        said = run.errors;
        std::vector<std::string> names;
        const size_t length = folder.Path("").size();
        for (const auto& file : nlohmann::json::parse(run.output)) {
            const std::string name = file["file"].get<std::string>().substr(length);
            names.push_back(name + (file["complete"].get<bool>() ? "" : " bad"));
        }
        return names;
    }
    std::string Path(const std::string& name) { return folder.Path(name); }

    TemporaryDirectory folder;
    std::string said;
};

using Names = std::vector<std::string>;

TEST_F(Inputs, FoldersListsAndArchives) {
    Add("in/b.vkm", map);
    Add("in/a.VKM.gz", Deflated(map, MAX_WBITS + 16));
    Add("in/notes.txt", "no map");
    Add("in/deep/c.vkm", map);
    const std::vector<ZipEntry> entries = {
        {"x/1.vkm", map}, {"readme.txt", "no map"}, {"2.vkm.gz", Deflated(map, 31)}};
    Add("in/deep/maps.zip", Zip(entries));
    Add("maps.tar", Tar(entries));
    Add("maps.tgz", Deflated(Tar(entries), MAX_WBITS + 16));
    Add("single.zip", Zip({{"plan.txt", map}}));
    Add("list", "\xEF\xBB\xBF" + Path("in/b.vkm") + "\r\n\n" + Path("maps.tar"));

    EXPECT_EQ((Names{"in/a.VKM.gz", "in/b.vkm"}), Found({Path("in")}));
    EXPECT_EQ((Names{"in/a.VKM.gz", "in/b.vkm", "in/deep/c.vkm", "in/deep/maps.zip/x/1.vkm",
                     "in/deep/maps.zip/2.vkm.gz"}),
              Found({"--recursive", Path("in")}));
    EXPECT_EQ((Names{"in/b.vkm", "maps.tar/x/1.vkm", "maps.tar/2.vkm.gz"}),
              Found({"--files-from", Path("list")}));
    EXPECT_EQ((Names{"maps.tgz/x/1.vkm", "maps.tgz/2.vkm.gz"}), Found({Path("maps.tgz")}));
    EXPECT_EQ((Names{"maps.tar/x/1.vkm"}), Found({Path("maps.tar/x/1.vkm")}));
    EXPECT_EQ((Names{"single.zip/plan.txt"}), Found({Path("single.zip")}));
    EXPECT_EQ(0, RunVkm({"dump", Path("single.zip")}).exitCode);
    EXPECT_EQ(2, RunVkm({"dump", Path("maps.tar")}).exitCode);
}

TEST_F(Inputs, ArchivesThatAreNotToBeBelieved) {
    const std::string zip = Zip({{"1.vkm", map}, {"2.vkm", map}});
    const std::string tar = Tar({{"1.vkm", map}});
    struct Case {
        const char* name;
        std::string bytes;
        const char* found;
        const char* said;
    };
    const Case cases[] = {
        {"out.zip", Zip({{"../1.vkm", map}}), "out.zip bad", "leads out"},
        {"root.tar", Tar({{"/1.vkm", map}}), "root.tar bad", "leads out"},
        {"over.zip", Zip({{"1.vkm", map}, {"2.vkm", map, UINT64_MAX, 0}}), "over.zip bad", "over each other"},
        {"cut.zip", zip.substr(0, zip.size() - 30), "cut.zip bad", "directory"},
        {"cut.tar", tar.substr(0, 600), "cut.tar bad", "too early"},
        {"long.zip", Zip({{"1.vkm", map, map.size() - 1}}), "long.zip/1.vkm bad", "longer than"},
        {"short.zip", Zip({{"1.vkm", map, map.size() + 1}}), "short.zip/1.vkm bad", "shorter than"},
        {"bomb.zip", Zip({{"1.vkm", "&V 1 0 0\n&* " + std::string(size_t{300} << 20, 'x')}}),
         "bomb.zip/1.vkm bad", "256 MiB"},
        {"none.zip", Zip({{"a", ""}, {"b", ""}}), "none.zip bad", "no VKM file"},
    };
    for (const Case& one : cases) {
        Add(one.name, one.bytes);
        EXPECT_EQ((Names{one.found}), Found({Path(one.name)})) << one.name;
        EXPECT_NE(std::string::npos, said.find(one.said)) << said;
    }
    // Whatever stands in a directory, the reading ends with a sentence.
    for (size_t i = zip.size() - 150; i < zip.size(); i += 3) {
        std::string changed = zip;
        changed[i] = static_cast<char>(changed[i] ^ 0x81);
        Add("changed.zip", changed);
        EXPECT_LE(RunVkm({"info", Path("changed.zip")}).exitCode, 1) << i;
    }
}

}  // namespace
