#include "symbols/block_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "support/memory_pool.h"

namespace vemrado {

using platform::Origin;

namespace {

constexpr int64_t largestPosition = 0xFFFFFFFF;

}  // namespace

CBlockFile::CBlockFile() : buffer(static_cast<char*>(AllocateMemory(bufferSize, alignof(int32_t)))) {
    if (buffer != nullptr) flags |= flagBuffered;
}

CBlockFile::~CBlockFile() {
    file.Close();
    if (buffer != nullptr) FreeMemory(buffer);
}

void CBlockFile::SetName(const char* path) {
    file.Close();
    flags = (flags | flagNamed) & ~flagOpened;
    std::snprintf(fileName, sizeof fileName, "%s", path);
    filePosition = 0;
    DropBuffer();
}

void CBlockFile::DropBuffer() {
    buffered = consumed = 0;
}

int64_t CBlockFile::Fail() {
    ++errorCount;
    return -1;
}

uint32_t CBlockFile::TakeError() {
    return errorCount == 0 ? 0 : errorCount--;
}

int CBlockFile::EnsureOpen() {
    if ((flags & flagNamed) == 0) return 0;
    if ((flags & flagOpened) != 0 && file.IsOpen()) return 1;
    if (!file.Open(fileName)) return 0;
    if ((flags & flagOpened) == 0) {
        flags |= flagOpened;
        filePosition = 0;
    } else if (file.Seek(filePosition, Origin::start) != filePosition) {
        file.Close();
        return 0;
    }
    return 1;
}

int64_t CBlockFile::TakeFromBuffer(char* destination, int64_t count) {
    const uint32_t taken = static_cast<uint32_t>(std::min<int64_t>(count, buffered));
    std::memcpy(destination, buffer + consumed, taken);
    consumed += taken;
    buffered -= taken;
    return taken;
}

// False on failure; at the end of the file the buffer is empty afterwards.
bool CBlockFile::FillBuffer() {
    DropBuffer();
    const int64_t count = file.Read(buffer, static_cast<size_t>(bufferSize));
    if (count < 0) return false;
    buffered = static_cast<uint32_t>(count);
    filePosition += buffered;
    return true;
}

int64_t CBlockFile::Read(void* destination, int64_t count) {
    if (count < 1) return 0;
    char* to = static_cast<char*>(destination);
    int64_t done = 0;
    if (buffered > 0) {
        done = TakeFromBuffer(to, count);
        if (done == count) return done;
    }
    // What the buffer gave counts even when the rest fails.
    const int64_t failure = done > 0 ? done : -1;
    if (EnsureOpen() == 0) {
        Fail();
        return failure;
    }
    const int64_t wanted = count - done;
    if ((flags & flagBuffered) == 0 || wanted >= directReadSize) {
        DropBuffer();  // it no longer ends where the handle stands
        const int64_t direct = file.Read(to + done, static_cast<size_t>(wanted));
        if (direct < 0) {
            Fail();
            return failure;
        }
        filePosition += static_cast<uint32_t>(direct);
        return done + direct;
    }
    if (!FillBuffer()) {
        Fail();
        return failure;
    }
    return done + TakeFromBuffer(to + done, wanted);
}

// After a failure nobody knows where the handle stands; without one, the next step opens it at the saved
// position.
int64_t CBlockFile::SeekHandle(int64_t offset, Origin origin) {
    const int64_t position = file.Seek(offset, origin);
    if (position < 0 || position > largestPosition) {
        ReleaseHandle();
        return -1;
    }
    filePosition = static_cast<uint32_t>(position);
    return position;
}

// Where a seek with a filled buffer leads; below 0 when the end of the file is not to be found.
int64_t CBlockFile::SeekTarget(int64_t offset, Origin origin) {
    if (origin == Origin::start) return offset;
    if (origin == Origin::current) {
        return std::max<int64_t>(Position() + offset, 0);
    }
    if (EnsureOpen() == 0) return -1;
    const int64_t end = file.Seek(0, Origin::end);
    return end < 0 ? -1 : std::max<int64_t>(end + offset, 0);
}

int64_t CBlockFile::Seek(int64_t offset, Origin origin) {
    if (static_cast<uint32_t>(origin) > 2 || (flags & flagNamed) == 0) return -1;
    if (buffered == 0 && consumed == 0) {
        if (EnsureOpen() == 0) return Fail();
        const int64_t position = SeekHandle(offset, origin);
        return position < 0 ? Fail() : position;
    }
    const int64_t target = SeekTarget(offset, origin);
    if (target < 0 || target > largestPosition) {
        if (origin == Origin::end) ReleaseHandle();
        return -1;
    }
    const int64_t delta = target - Position();
    if (delta <= 0 ? -delta <= consumed : delta < buffered) {
        consumed = static_cast<uint32_t>(consumed + delta);
        buffered = static_cast<uint32_t>(buffered - delta);
        return origin == Origin::end ? SeekHandle(filePosition, Origin::start) : target;
    }
    DropBuffer();
    if (EnsureOpen() == 0) return -1;
    filePosition = static_cast<uint32_t>(target);
    return SeekHandle(target, Origin::start);
}

uint32_t CBlockFile::Length() {
    if (EnsureOpen() != 0) {
        const int64_t length = file.Seek(0, Origin::end);
        const int64_t back = file.Seek(filePosition, Origin::start);
        if (length >= 0 && length <= largestPosition && back == filePosition)
            return static_cast<uint32_t>(length);
    }
    ReleaseHandle();
    Fail();
    return 0;
}

}  // namespace vemrado
