#include "checked_files.h"

#include <cpl_vsi.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "client/system.h"

namespace vemrado::gdal {

namespace {

constexpr const char* prefix = "/vsivkmconvert/";

std::string failedWrite;

bool readerIsGone = false;
std::string waiting;  // for standard output: a buffer of the C library would lose why its write failed

void Remember() {
    readerIsGone |= errno == EPIPE;
    if (failedWrite.empty()) failedWrite = errno != 0 ? std::strerror(errno) : "a write failed";
}

VSILFILE* FileOf(void* opened) {
    return static_cast<VSILFILE*>(opened);
}

// GDAL hands the callbacks the path without the prefix.
VSIFilesystemPluginCallbacksStruct* MakeCallbacks() {
    VSIFilesystemPluginCallbacksStruct* calls = VSIAllocFilesystemPluginCallbacksStruct();
    calls->stat = [](void*, const char* path, VSIStatBufL* found, int flags) {
        return VSIStatExL(path, found, flags);
    };
    calls->unlink = [](void*, const char* path) { return VSIUnlink(path); };
    calls->rename = [](void*, const char* from, const char* to) { return VSIRename(from, to); };
    calls->mkdir = [](void*, const char* path, long mode) { return VSIMkdir(path, mode); };
    calls->rmdir = [](void*, const char* path) { return VSIRmdir(path); };
    calls->read_dir = [](void*, const char* path, int most) { return VSIReadDirEx(path, most); };
    calls->open = [](void*, const char* path, const char* access) -> void* {
        return VSIFOpenL(path, access);
    };
    calls->tell = [](void* file) { return VSIFTellL(FileOf(file)); };
    calls->seek = [](void* file, vsi_l_offset place, int whence) {
        return VSIFSeekL(FileOf(file), place, whence);
    };
    calls->read = [](void* file, void* bytes, size_t size, size_t count) {
        return VSIFReadL(bytes, size, count, FileOf(file));
    };
    calls->eof = [](void* file) { return VSIFEofL(FileOf(file)); };
    calls->write = [](void* file, const void* bytes, size_t size, size_t count) {
        errno = 0;
        const size_t written = VSIFWriteL(bytes, size, count, FileOf(file));
        if (written != count) Remember();
        return written;
    };
    calls->flush = [](void* file) {
        errno = 0;
        const int result = VSIFFlushL(FileOf(file));
        if (result != 0) Remember();
        return result;
    };
    calls->truncate = [](void* file, vsi_l_offset size) { return VSIFTruncateL(FileOf(file), size); };
    calls->close = [](void* file) {
        errno = 0;
        const int result = VSIFCloseL(FileOf(file));
        if (result != 0) Remember();
        return result;
    };
    return calls;
}

bool Install() {
    VSIFilesystemPluginCallbacksStruct* calls = MakeCallbacks();
    const bool installed = VSIInstallPluginHandler(prefix, calls) == 0;
    VSIFreeFilesystemPluginCallbacksStruct(calls);
    return installed;
}

}  // namespace

std::string CheckedPath(const std::string& path) {
    static const bool installed = Install();
    return installed ? prefix + path : path;
}

const char* CheckedStandardOutput() {
    waiting.clear();
    VSIStdoutSetRedirection(
        [](const void* bytes, size_t size, size_t count, FILE*) -> size_t {
            constexpr size_t enough = 1 << 16;
            waiting.append(static_cast<const char*>(bytes), size * count);
            if (waiting.size() >= enough) FlushStandardOutput();
            return failedWrite.empty() ? count : 0;
        },
        stdout);
    return "/vsistdout/";
}

void FlushStandardOutput() {
    errno = 0;
    if (failedWrite.empty() && client::WriteStandardOutput(waiting) != client::WriteResult::done) Remember();
    waiting.clear();
}

const std::string& FailedWrite() {
    return failedWrite;
}

void ForgetFailedWrites() {
    failedWrite.clear();
    readerIsGone = false;
}

bool ReaderIsGone() {
    return readerIsGone;
}

}  // namespace vemrado::gdal
