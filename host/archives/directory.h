// The lists of what lies in zip and tar archives.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "archives/byte_source.h"

namespace vemrado::archives {

// A file of an archive.
struct Member {
    std::string name;       // with / between folders
    uint64_t size = 0;      // unpacked
    uint64_t packed = 0;    // as long as in the archive
    uint64_t place = 0;     // zip: of its local header; tar: of its first byte
    uint64_t limit = 0;     // zip: where the next thing in the archive begins
    uint32_t checksum = 0;  // zip
    uint16_t method = 0;    // zip
    bool encrypted = false;
};

// Regular files in the order of the directory. ArchiveError when the archive is damaged, when entries lie
// over each other, or when a name leads out of the archive.
std::vector<Member> ZipDirectory(const std::string& path);
// The same of a tar archive, which may come unpacked from a compressed one.
std::vector<Member> TarDirectory(ByteSource& archive);

// The bytes of a file in a zip archive.
std::unique_ptr<ByteSource> OpenZipMember(const std::string& path, const Member& member);

// A block that begins a tar archive.
bool IsTarHeader(const char* block, size_t length);

// Throws when the name leads out of the archive: an absolute one, or one with a part ".."
void CheckName(const std::string& name);

}  // namespace vemrado::archives
