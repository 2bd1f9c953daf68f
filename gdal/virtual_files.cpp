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
    VSILFILE* stream;
    void* archived = nullptr;  // in place of the stream: of the provider of archives
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

void* OpenFile(void*, const char* path) {
    std::string name = path;
    std::replace(name.begin(), name.end(), '\\', '/');
    if (!name.starts_with("/vsi")) {
        const FrameworkFileProvider& archived = archives::ArchiveFiles();
        if (void* file = archived.open(archived.context, name.c_str())) return new VirtualFile{nullptr, file};
    }
    VSILFILE* stream = VSIFOpenL(name.c_str(), "rb");
    if (stream == nullptr) return nullptr;
    SkipMark(stream);
    return new VirtualFile{stream};
}

int64_t ReadArchived(VirtualFile& file, void* destination, size_t count) {
    const int64_t got = archives::ArchiveFiles().read(file.archived, destination, count);
    file.failed = got < 0;
    if (file.failed)
        CPLError(CE_Failure, CPLE_FileIO, "it cannot be unpacked: %s", archives::TakeLastProblem().c_str());
    return got;
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
    const std::unique_ptr<void, decltype(&CloseFile)> opened(OpenFile(nullptr, name.c_str()), &CloseFile);
    if (!opened) return std::nullopt;
    VirtualFile& file = *static_cast<VirtualFile*>(opened.get());
    if (file.stream != nullptr) {
        VSIRewindL(file.stream);
        return StartOf(file.stream, client::lookedAtBytes);
    }
    std::string start(client::lookedAtBytes, '\0');
    size_t length = 0;
    while (length < start.size()) {
        const int64_t got =
            archives::ArchiveFiles().read(file.archived, start.data() + length, start.size() - length);
        if (got <= 0) break;
        length += static_cast<size_t>(got);
    }
    start.resize(length);
    return start;
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

const FrameworkFileProvider virtualFiles = {nullptr, OpenFile, ReadFile, LengthUnknown, CloseFile};

}  // namespace vemrado::gdal
