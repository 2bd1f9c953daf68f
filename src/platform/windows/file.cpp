#define NOMINMAX
#include <windows.h>

#include <algorithm>

#include "platform/native.h"

namespace vemrado::platform {

namespace {

int LastSystemError() {
    return static_cast<int>(GetLastError());
}

bool IsDiskFile(HANDLE file) {
    return GetFileType(file) == FILE_TYPE_DISK;
}

}  // namespace

const int readError = ERROR_READ_FAULT;
const int seekError = ERROR_SEEK;

NativeFile NativeOpen(const char* path, int& error) {
    const HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file != INVALID_HANDLE_VALUE) return file;
    error = LastSystemError();
    return nullptr;
}

void NativeClose(NativeFile file) {
    CloseHandle(file);
}

int64_t NativeRead(NativeFile file, void* destination, size_t count, int& error) {
    constexpr size_t most = 1u << 30;
    DWORD done = 0;
    if (ReadFile(file, destination, static_cast<DWORD>(std::min(count, most)), &done, nullptr)) return done;
    error = LastSystemError();
    // The writer's end of a pipe is closed: what was written has been read.
    return error == ERROR_BROKEN_PIPE ? 0 : -1;
}

int64_t NativeSeek(NativeFile file, int64_t offset, Origin origin, int& error) {
    constexpr DWORD methods[] = {FILE_BEGIN, FILE_CURRENT, FILE_END};
    LARGE_INTEGER distance;
    LARGE_INTEGER position;
    distance.QuadPart = offset;
    if (!IsDiskFile(file)) {
        error = seekError;
        return -1;
    }
    if (SetFilePointerEx(file, distance, &position, methods[static_cast<int>(origin)]))
        return position.QuadPart;
    error = LastSystemError();
    return -1;
}

int64_t NativeLength(NativeFile file, int& error) {
    if (!IsDiskFile(file)) return 0;
    LARGE_INTEGER length;
    if (GetFileSizeEx(file, &length)) return length.QuadPart;
    error = LastSystemError();
    return -1;
}

}  // namespace vemrado::platform
