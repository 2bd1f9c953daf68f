#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

#include "client/stop_request.h"
#include "client/system.h"
#include "client/text_encoding.h"

namespace vemrado::client {
namespace {

std::atomic<bool> interruptCaught = false;

// False passes the event on: to the program's end, at the second time.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    return event == CTRL_C_EVENT && !interruptCaught.exchange(true) ? TRUE : FALSE;
}

DWORD Bounded(size_t count) {
    constexpr size_t most = 1 << 20;
    return static_cast<DWORD>(std::min(count, most));
}

std::string ToCodePage(const std::wstring& text, UINT codePage) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::wstring FromCodePage(std::string_view bytes, UINT codePage) {
    if (bytes.empty()) return {};
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), length, text.data(), size);
    return text;
}

// Which of these it is depends on the system and on how far the closing has got.
bool IsClosedPipe(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
}

WriteResult WriteAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), Bounded(bytes.size()), &written, nullptr)) {
            const DWORD error = GetLastError();
            if (IsClosedPipe(error)) return WriteResult::closedPipe;
            errno = error == ERROR_DISK_FULL ? ENOSPC : error == ERROR_INVALID_HANDLE ? EBADF : EIO;
            return WriteResult::failed;
        }
        bytes.remove_prefix(written);
    }
    return WriteResult::done;
}

}  // namespace

void PrepareStandardStreams() {}

WriteResult WriteStandardOutput(std::string_view bytes) {
    return WriteAll(GetStdHandle(STD_OUTPUT_HANDLE), bytes);
}

bool StandardOutputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

int64_t ReadStandardInput(void* destination, size_t count) {
    if (StopRequested()) return 0;
    DWORD got = 0;
    if (!ReadFile(GetStdHandle(STD_INPUT_HANDLE), destination, Bounded(count), &got, nullptr)) {
        const DWORD error = GetLastError();
        return error == ERROR_BROKEN_PIPE || error == ERROR_OPERATION_ABORTED || StopRequested() ? 0 : -1;
    }
    return got;
}

void WriteStandardError(std::string_view utf8) {
    const HANDLE file = GetStdHandle(STD_ERROR_HANDLE);
    const std::wstring text = FromCodePage(utf8, CP_UTF8);
    DWORD mode = 0;
    if (GetConsoleMode(file, &mode)) {
        DWORD written = 0;
        WriteConsoleW(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    } else {
        WriteAll(file, ToCodePage(text, CP_ACP));
    }
}

void CatchInterrupt() {
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool InterruptCaught() {
    return interruptCaught;
}

FileKind KindOfFile(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return FileKind::none;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return FileKind::directory;
    return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? FileKind::other : FileKind::regular;
}

std::string FollowLinks(const std::string& path) {
    return path;
}

std::FILE* CreateNewFile(const std::string& path) {
    if (KindOfFile(path) != FileKind::none) {
        errno = EEXIST;
        return nullptr;
    }
    return std::fopen(path.c_str(), "wb");
}

bool PutInPlace(const std::string& from, const std::string& to) {
    if (MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
    const DWORD error = GetLastError();
    errno = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ? EACCES : EIO;
    return false;
}

std::string ProgramPath() {
    std::array<char, 4 * MAX_PATH> path{};
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return length < path.size() ? std::string(path.data(), length) : std::string();
}

unsigned long ProcessNumber() {
    return GetCurrentProcessId();
}

char32_t CharacterOfByte(Encoding encoding, unsigned char byte) {
    constexpr std::array<UINT, 4> codePages = {1250, 852, 28592, CP_UTF8};
    const char input = static_cast<char>(byte);
    std::array<wchar_t, 2> character{};
    const UINT codePage = codePages[static_cast<size_t>(encoding)];
    const DWORD flags = encoding == Encoding::iso8859_2 ? 0 : MB_ERR_INVALID_CHARS;
    if (MultiByteToWideChar(codePage, flags, &input, 1, character.data(), 2) != 1) return 0;
    // The system gives a byte that Windows-1250 leaves open the control character of the same number.
    const bool open = encoding == Encoding::windows1250 && character[0] >= 0x80 && character[0] < 0xA0;
    return open ? 0 : static_cast<char32_t>(character[0]);
}

std::string SystemTextToUtf8(std::string_view text) {
    return ToCodePage(FromCodePage(text, CP_ACP), CP_UTF8);
}

}  // namespace vemrado::client
