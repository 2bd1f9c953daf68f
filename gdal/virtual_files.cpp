#include "virtual_files.h"

#include <cpl_error.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/foreign_file.h"
#include "client/input_file.h"

#include "archives/archive_files.h"

namespace vemrado::gdal {

namespace {

struct VirtualFile {
    VSILFILE* stream = nullptr;
    void* archived = nullptr;  // in place of the stream: of the provider of archives
    std::string ahead;         // of an archived file: bytes that were looked at and come first
    bool failed = false;
};

// The start of a file that has just been opened; reading goes on from the beginning.
std::string StartOf(VSILFILE* stream, size_t most) {
    std::string start(most, '\0');
    start.resize(VSIFReadL(start.data(), 1, most, stream));
    VSIRewindL(stream);
    return start;
}

// Tables of a symbology keep theirs: only a map's mark is passed over.
void SkipMark(VSILFILE* stream) {
    constexpr size_t length = client::byteOrderMark.size();
    if (StartOf(stream, length) != client::byteOrderMark) return;
    const std::string start = StartOf(stream, client::lookedAtBytes);
    if (client::ForeignKind(start).empty()) VSIFSeekL(stream, length, SEEK_SET);
}

int64_t ReadArchived(VirtualFile& file, void* destination, size_t count) {
    if (!file.ahead.empty()) {
        const size_t given = file.ahead.copy(static_cast<char*>(destination), count);
        file.ahead.erase(0, given);
        return static_cast<int64_t>(given);
    }
    const int64_t got = archives::ArchiveFiles().read(file.archived, destination, count);
    file.failed = got < 0;
    if (file.failed)
        CPLError(CE_Failure, CPLE_FileIO, "it cannot be unpacked: %s", archives::TakeLastProblem().c_str());
    return got;
}

std::string ReadArchived(VirtualFile& file, size_t most) {
    std::string bytes(most, '\0');
    size_t length = 0;
    while (length < most && !file.failed) {
        const int64_t got = ReadArchived(file, bytes.data() + length, most - length);
        if (got <= 0) break;
        length += static_cast<size_t>(got);
    }
    bytes.resize(length);
    return bytes;
}

// In archives there are maps only, so a mark is always one.
void* OpenArchived(void* opened, bool withMark) {
    auto file = std::make_unique<VirtualFile>();
    file->archived = opened;
    const std::string start = ReadArchived(*file, client::byteOrderMark.size());
    if (withMark || start != client::byteOrderMark) file->ahead = start;
    return file.release();
}

void* Open(const char* path, bool withMark) {
    std::string name = path;
    std::replace(name.begin(), name.end(), '\\', '/');
    if (!name.starts_with("/vsi")) {
        const FrameworkFileProvider& archived = archives::ArchiveFiles();
        if (void* file = archived.open(archived.context, name.c_str())) return OpenArchived(file, withMark);
    }
    VSILFILE* stream = VSIFOpenL(name.c_str(), "rb");
    if (stream == nullptr) return nullptr;
    if (!withMark) SkipMark(stream);
    return new VirtualFile{stream, nullptr, {}};
}

void* OpenFile(void*, const char* path) {
    return Open(path, false);
}

// Some virtual files report damage to GDAL's error handler and then look as if they ended there.
int64_t ReadFile(void* opened, void* destination, size_t count) {
    VirtualFile& file = *static_cast<VirtualFile*>(opened);
    if (file.failed) return -1;
    if (file.archived != nullptr) return ReadArchived(file, destination, count);
    const auto errorsBefore = CPLGetErrorCounter();
    const size_t got = VSIFReadL(destination, 1, count, file.stream);
    if (got == count) return static_cast<int64_t>(got);
    const bool reported = CPLGetErrorCounter() != errorsBefore && CPLGetLastErrorType() >= CE_Failure;
    file.failed = reported || !VSIFEofL(file.stream);
    return got == 0 && file.failed ? -1 : static_cast<int64_t>(got);
}

int64_t LengthUnknown(void*) {
    return 0;
}

void CloseFile(void* opened) {
    const std::unique_ptr<VirtualFile> file(static_cast<VirtualFile*>(opened));
    if (file->stream != nullptr) VSIFCloseL(file->stream);
    if (file->archived != nullptr) archives::ArchiveFiles().close(file->archived);
}

// With the byte order mark. None when it cannot be opened.
std::optional<std::string> StartOfFile(const std::string& name) {
    const std::unique_ptr<void, decltype(&CloseFile)> opened(Open(name.c_str(), true), &CloseFile);
    if (!opened) return std::nullopt;
    VirtualFile& file = *static_cast<VirtualFile*>(opened.get());
    return file.stream != nullptr ? StartOf(file.stream, client::lookedAtBytes)
                                  : ReadArchived(file, client::lookedAtBytes);
}

}  // namespace

bool CheckMapFile(const std::string& file, const std::string& shownName, client::EncodingEvidence& evidence) {
    const std::optional<std::string> read = StartOfFile(file);
    if (!read) return true;  // the module says why
    const std::string& start = *read;
    evidence.Add(start);
    const std::string_view foreign = client::ForeignKind(start);
    if (!foreign.empty()) {
        CPLError(CE_Failure, CPLE_OpenFailed, "%s", client::ForeignFileMessage(shownName, foreign).c_str());
        return false;
    }
    if (start.starts_with(client::byteOrderMark))
        CPLError(CE_Warning, CPLE_AppDefined, "%s", client::SkippedMarkMessage(shownName).c_str());
    return true;
}

FileReading::FileReading(const std::string& name)
    : file(virtualFiles.open(virtualFiles.context, name.c_str())) {}

FileReading::~FileReading() {
    if (file != nullptr) virtualFiles.close(file);
}

size_t FileReading::Read(char* to, size_t count) {
    const int64_t got = file != nullptr ? virtualFiles.read(file, to, count) : 0;
    return got > 0 ? static_cast<size_t>(got) : 0;
}

const FrameworkFileProvider virtualFiles = {nullptr, OpenFile, ReadFile, LengthUnknown, CloseFile};

}  // namespace vemrado::gdal
