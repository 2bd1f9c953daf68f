#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "platform/native.h"
#include "platform/posix/errors.h"
#include "platform/posix/path_lookup.h"

namespace vemrado::platform {

namespace {

// A descriptor as a NativeFile: one more, so that descriptor 0 is not null.
NativeFile ToFile(int descriptor) {
    return reinterpret_cast<NativeFile>(static_cast<intptr_t>(descriptor) + 1);
}

int ToDescriptor(NativeFile file) {
    return static_cast<int>(reinterpret_cast<intptr_t>(file) - 1);
}

int OpenAsWritten(const char* path) {
    while (true) {
        const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

bool NameIsMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// The path as written, then with '\' as separator, then without regard to case. The error of the first
// failure is the one that counts unless a later name exists.
int OpenByAnySpelling(const char* path, int& error) {
    int descriptor = OpenAsWritten(path);
    if (descriptor >= 0) return descriptor;
    error = errno;
    if (!NameIsMissing(error)) return -1;

    char converted[PATH_MAX];
    if (ConvertSeparators(path, converted, sizeof converted)) {
        path = converted;
        descriptor = OpenAsWritten(path);
        if (descriptor >= 0) return descriptor;
        if (!NameIsMissing(errno)) error = errno;
        if (!NameIsMissing(errno)) return -1;
    }
    char found[PATH_MAX];
    if (!FindWithoutCase(path, found, sizeof found)) return -1;
    descriptor = OpenAsWritten(found);
    if (descriptor < 0) error = errno;
    return descriptor;
}

// 0 when the open file can be read as one and is not locked against readers.
int CheckOpened(int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    // A file system without locks, or a file that takes none, is no failure.
    if (flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) return lockedError;
    return 0;
}

}  // namespace

NativeFile NativeOpen(const char* path, int& error) {
    const int descriptor = OpenByAnySpelling(path, error);
    if (descriptor < 0) return nullptr;
    const int problem = CheckOpened(descriptor);
    if (problem != 0) {
        error = problem;
        close(descriptor);
        return nullptr;
    }
    posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    return ToFile(descriptor);
}

void NativeClose(NativeFile file) {
    close(ToDescriptor(file));
}

int64_t NativeRead(NativeFile file, void* destination, size_t count, int& error) {
    while (true) {
        const ssize_t result = read(ToDescriptor(file), destination, std::min<size_t>(count, INT_MAX));
        if (result >= 0) return result;
        if (errno == EINTR) continue;
        error = errno;
        return -1;
    }
}

int64_t NativeSeek(NativeFile file, int64_t offset, Origin origin, int& error) {
    constexpr int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off_t position = lseek(ToDescriptor(file), offset, whence[static_cast<int>(origin)]);
    if (position < 0) error = errno;
    return position;
}

int64_t NativeLength(NativeFile file, int& error) {
    struct stat status = {};
    if (fstat(ToDescriptor(file), &status) != 0) {
        error = errno;
        return -1;
    }
    return S_ISREG(status.st_mode) ? status.st_size : 0;
}

}  // namespace vemrado::platform
