// The module's whole view of the operating system, sized by what is asked of it. One implementation per
// system stands in posix/ and windows/; what both share (provider files, text mode) stands beside this
// header.
//
// Nothing here throws. Any thread may call; an object serves one thread at a time.

#pragma once

#include <cstddef>
#include <cstdint>

namespace vemrado::platform {

// --- Files ---

enum class Origin { start = 0, current = 1, end = 2 };

// An open file of the system or of the host's file provider, read only. Other readers are let in and writers
// are kept out (on Linux by an advisory lock).
class File {
  public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { Close(); }

    // Opens for reading with the hint that reads run from start to end. Closes what was open. The path may
    // use '\' as separator and differ in case from what is on disk. False on failure; OpenFailureText then
    // describes it.
    bool Open(const char* path);
    bool IsOpen() const { return handle != nullptr; }
    void Close();

    // Bytes read, or -1 on failure. Less than count only before the end of the file or before a failure,
    // which the next call reports: who reads to the end calls until there is 0. A pipe is read until it has
    // given count bytes.
    int64_t Read(void* destination, size_t count);
    // The new position from the start, or -1. A file of the provider is opened anew to go back.
    int64_t Seek(int64_t offset, Origin origin);
    // Length in bytes, 0 when the file has none (a pipe), -1 on failure. The position is unchanged.
    int64_t Length();

    // The system's number of the last failure of this object.
    int LastError() const { return lastError; }

  private:
    int64_t ReadOnce(void* destination, size_t count);

    void* handle = nullptr;  // owned: a NativeFile, or a ProvidedFile
    bool provided = false;
    int lastError = 0;
    int pendingError = 0;  // of a read that had given some bytes already
};

// Writes one line that names the path and the reason into text, at most capacity - 1 characters and the
// terminator. The path is shortened at its start when both do not fit.
void OpenFailureText(const char* path, int error, char* text, size_t capacity);
// The reason alone, in the system's words, without a line end.
void ErrorReason(int error, char* text, size_t capacity);

// Keeps the system from showing dialogs about missing media to the calling thread while it lives.
class CriticalErrorGuard {
  public:
    CriticalErrorGuard();
    ~CriticalErrorGuard();
    CriticalErrorGuard(const CriticalErrorGuard&) = delete;
    CriticalErrorGuard& operator=(const CriticalErrorGuard&) = delete;

  private:
    unsigned int previousMode;
};

// --- Registry ---

enum class RegistryRoot { localMachine };
constexpr uint32_t registryString = 1;  // REG_SZ

// The two steps in which a value is read, as the system offers them: type and size in bytes first (data
// null), then the data. size is in and out: the room in data, then the value's size. False when key or value
// is missing or the room too small. A null subkey names the root key itself.
bool QueryRegistryValue(RegistryRoot root, const char* subkey, const char* name, uint32_t* type, char* data,
                        uint32_t* size);

// --- Memory ---

constexpr size_t regionGranularity = 65536;

// size is a multiple of regionGranularity; the address is too. Zeroed, readable and writable. Null on
// failure.
void* ReserveRegion(size_t size);
void ReleaseRegion(void* base, size_t size);

// The process heap: as realloc and free. Null on failure, the old block stays then.
void* ReallocateOnHeap(void* block, size_t size);
void FreeOnHeap(void* block);

// --- Messages ---

// Delivers the calling thread's pending window messages (Windows) and runs the framework's pump hook.
void PumpMessages();

}  // namespace vemrado::platform
