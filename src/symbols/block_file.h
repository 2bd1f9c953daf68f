// A buffered read-only file: small reads and seeks that stay inside the buffer cost no file access. Opens the
// file when it is first read and again after its handle was released. Nothing throws and nothing is shown:
// failures are counted, and the layer above takes the count after a step.

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/platform.h"

namespace vemrado {

class CBlockFile {
  public:
    static constexpr size_t nameSize = 260;  // a longer path is cut
    static constexpr int64_t bufferSize = 8192;
    static constexpr int64_t directReadSize = 4096;  // reads of this size and more go past the buffer

    CBlockFile();
    CBlockFile(const CBlockFile&) = delete;
    CBlockFile& operator=(const CBlockFile&) = delete;
    ~CBlockFile();

    // The file to read; nothing is opened yet.
    void SetName(const char* path);
    const char* Name() const { return fileName; }

    // 1 when the file is open at the saved position, else 0.
    int EnsureOpen();
    // Bytes read, less than count only at the end of the file; 0 for a count below 1; -1 on failure, which
    // counts an error.
    int64_t Read(void* destination, int64_t count);
    // Where the next read starts.
    int64_t Position() const { return static_cast<int64_t>(filePosition) - buffered; }
    // The new position or -1. From the end and inside the buffer the result is the position of the handle.
    int64_t Seek(int64_t offset, platform::Origin origin);
    // 0 on failure, which counts an error. Longer than 4 GB is a failure.
    uint32_t Length();

    // 0 when no step failed since the errors were taken; else takes one and returns how many there were.
    uint32_t TakeError();
    // Closes the handle; buffer and positions stay, and the next read that needs the file opens it again.
    void ReleaseHandle() { file.Close(); }

  private:
    static constexpr uint32_t flagNamed = 0x1;
    static constexpr uint32_t flagOpened = 0x2;
    static constexpr uint32_t flagBuffered = 0x8;

    int64_t Fail();
    int64_t TakeFromBuffer(char* destination, int64_t count);
    bool FillBuffer();
    void DropBuffer();
    int64_t SeekHandle(int64_t offset, platform::Origin origin);
    int64_t SeekTarget(int64_t offset, platform::Origin origin);

    char fileName[nameSize] = {};
    uint32_t errorCount = 0;
    uint32_t flags = 0;
    platform::File file;
    uint32_t filePosition = 0;  // of the handle; the buffer holds the bytes before it
    char* buffer;
    uint32_t buffered = 0;  // bytes of the buffer that are still to be read
    uint32_t consumed = 0;  // bytes of the buffer before them
};

}  // namespace vemrado
