// Files in zip and tar archives and compressed files, as files that the module opens by name:
// archive.zip/folder/sheet.vkm, archive.tar.gz/sheet.vkm, sheet.vkm.gz.
//
// An archive is believed nothing: sizes are checked against the archive's own length, entries must not lie
// over each other, a name must not lead out of it, and unpacking stops at 256 MiB where that is more than 200
// times the packed size. Functions may be called from any thread.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archives/byte_source.h"
#include "framework/framework.h"

namespace vemrado::archives {

struct ArchivedFile {
    std::string name;  // in the archive, with / between folders
    uint64_t size;     // unpacked
};

// True when the file on disk is a zip or tar archive, compressed or not, by its first bytes.
bool IsArchive(const std::string& path);

// The files in an archive, in its order. Throws ArchiveError when it cannot be used.
std::vector<ArchivedFile> FilesInArchive(const std::string& path);

// Opens files by such names. What the archive has against them goes with the failed read, see LastProblem.
const FrameworkFileProvider& ArchiveFiles();

// Why the last open or read of this thread failed; empty when none did since the last call.
std::string TakeLastProblem();

}  // namespace vemrado::archives
