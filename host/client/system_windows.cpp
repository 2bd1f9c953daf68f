#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <io.h>
#include <share.h>
#include <windows.h>
// After windows.h:
#include <shellapi.h>

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

// Of file names. Set when a library is loaded, never later.
UINT nameCodePage = CP_ACP;

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

// A name in the system's code page. On systems that have no UTF-8 there a name may not fit: its short form
// does.
std::string SystemName(const std::wstring& name) {
    if (GetACP() == CP_UTF8 || nameCodePage == CP_UTF8) return ToCodePage(name, CP_UTF8);
    BOOL lossy = FALSE;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name.data(), static_cast<int>(name.size()), nullptr, 0,
                        nullptr, &lossy);
    std::wstring shortName(lossy ? GetShortPathNameW(name.c_str(), nullptr, 0) : 0, L'\0');
    if (shortName.empty()) return ToCodePage(name, CP_ACP);
    shortName.resize(GetShortPathNameW(name.c_str(), shortName.data(), static_cast<DWORD>(shortName.size())));
    return ToCodePage(shortName, CP_ACP);
}

bool IsConsole(HANDLE file) {
    DWORD mode = 0;
    return GetConsoleMode(file, &mode) != 0;
}

// Consoles take wide characters; bytes would count as their own code page.
WriteResult WriteConsoleText(HANDLE console, std::string_view utf8) {
    const std::wstring text = FromCodePage(utf8, CP_UTF8);
    constexpr size_t most = 8192;  // older consoles refuse more at a time
    for (size_t place = 0; place < text.size();) {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min(text.size() - place, most));
        if (!WriteConsoleW(console, text.data() + place, count, &written, nullptr) || written == 0) {
            errno = EIO;
            return WriteResult::failed;
        }
        place += written;
    }
    return WriteResult::done;
}

// Where the last character of a UTF-8 text begins when its end is missing; the text's size when nothing is.
size_t WholeCharacters(std::string_view utf8) {
    for (size_t back = 1; back <= std::min<size_t>(3, utf8.size()); ++back) {
        const auto unit = static_cast<unsigned char>(utf8[utf8.size() - back]);
        if ((unit & 0xC0) == 0x80) continue;
        const size_t length = unit >= 0xF0 ? 4 : unit >= 0xE0 ? 3 : unit >= 0xC0 ? 2 : 1;
        return length > back ? utf8.size() - back : utf8.size();
    }
    return utf8.size();
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

std::wstring PathOfModule(HMODULE library) {
    std::wstring path(MAX_PATH, L'\0');
    while (true) {
        const auto room = static_cast<DWORD>(path.size());
        const DWORD length = GetModuleFileNameW(library, path.data(), room);
        if (length < room) return path.substr(0, length);
        path.resize(2 * path.size());
    }
}

struct WrittenArgument {
    std::wstring text;
    bool pattern = false;  // an asterisk or question mark stands outside quotes
};

// The command line as the platform's programs split it: 2n backslashes before a quote are n, one more makes
// the quote a character; elsewhere a backslash is one. The first argument is the program.
std::vector<WrittenArgument> SplitCommandLine(std::wstring_view line) {
    std::vector<WrittenArgument> arguments;
    const auto isBlank = [](wchar_t c) { return c == L' ' || c == L'\t'; };
    for (size_t i = 0; i < line.size();) {
        if (isBlank(line[i])) {
            ++i;
            continue;
        }
        WrittenArgument& argument = arguments.emplace_back();
        const bool isProgram = arguments.size() == 1;
        for (bool quoted = false; i < line.size() && (quoted || !isBlank(line[i])); ++i) {
            size_t backslashes = 0;
            while (!isProgram && i < line.size() && line[i] == L'\\') ++backslashes, ++i;
            const bool atQuote = i < line.size() && line[i] == L'"';
            argument.text.append(atQuote ? backslashes / 2 : backslashes, L'\\');
            if (i == line.size() || (!quoted && isBlank(line[i]))) break;
            if (atQuote && backslashes % 2 == 0) {
                quoted = !quoted;
                continue;
            }
            argument.text += line[i];
            argument.pattern |= !quoted && !isProgram && (line[i] == L'*' || line[i] == L'?');
        }
    }
    return arguments;
}

// Files whose names match the last part of a path, in the order of their names.
std::vector<std::wstring> MatchingFiles(const std::wstring& pattern) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    const std::wstring folder = pattern.substr(0, pattern.find_last_of(L"/\\:") + 1);
    do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") names.push_back(folder + name);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    std::ranges::sort(names);
    return names;
}

}  // namespace

void PrepareStandardStreams() {}

WriteResult WriteStandardOutput(std::string_view bytes) {
    const HANDLE file = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!IsConsole(file)) return WriteAll(file, bytes);
    static std::string begun;  // a character whose end comes with the next bytes
    begun.append(bytes);
    const size_t whole = WholeCharacters(begun);
    const WriteResult result = WriteConsoleText(file, std::string_view(begun).substr(0, whole));
    begun.erase(0, whole);
    return result;
}

bool StandardOutputIsTerminal() {
    return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE));
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
    // To a file as standard output goes there: both may go to one.
    if (IsConsole(file)) {
        WriteConsoleText(file, utf8);
    } else {
        WriteAll(file, utf8);
    }
}

void CatchInterrupt() {
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool InterruptCaught() {
    return interruptCaught;
}

void TakeNamesAsUtf8() {
    nameCodePage = CP_UTF8;
}

std::filesystem::path NativePath(const std::string& path) {
    return FromCodePage(path, nameCodePage);
}

FileKind KindOfFile(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(NativePath(path).c_str());
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
    return _wfopen(NativePath(path).c_str(), L"wb");
}

std::FILE* OpenForReading(const std::string& path) {
    return _wfsopen(NativePath(path).c_str(), L"rbN", _SH_DENYWR);
}

int64_t LengthOfFile(std::FILE* file) {
    const int64_t length = _filelengthi64(_fileno(file));
    return length > 0 ? length : 0;
}

bool PutInPlace(const std::string& from, const std::string& to) {
    if (MoveFileExW(NativePath(from).c_str(), NativePath(to).c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
    const DWORD error = GetLastError();
    errno = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ? EACCES : EIO;
    return false;
}

std::string ProgramPath() {
    return SystemName(PathOfModule(nullptr));
}

std::string LibraryPath() {
    HMODULE library = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&LibraryPath), &library)) return {};
    return SystemName(PathOfModule(library));
}

std::vector<std::string> ProgramArguments(int, const char* const*) {
    std::vector<std::string> arguments;
    for (const WrittenArgument& argument : SplitCommandLine(GetCommandLineW())) {
        const std::vector<std::wstring> names =
            argument.pattern ? MatchingFiles(argument.text) : std::vector<std::wstring>();
        for (const std::wstring& name : names) arguments.push_back(SystemName(name));
        if (names.empty()) arguments.push_back(SystemName(argument.text));
    }
    return arguments;
}

std::string NewTemporaryFolder() {
    // The user's own folder of temporary files, which others cannot read.
    const std::string stem =
        (std::filesystem::temp_directory_path() / "vemrado-").string() + std::to_string(ProcessNumber());
    for (int attempt = 0;; ++attempt) {
        std::string folder = stem + "-" + std::to_string(attempt);
        if (std::filesystem::create_directory(folder)) return folder;
    }
}

std::string OpenOnDesktop(const std::string& path) {
    std::string name = path;
    std::ranges::replace(name, '/', '\\');
    constexpr INT_PTR greatestProblem = 32;
    const auto outcome = reinterpret_cast<INT_PTR>(
        ShellExecuteA(nullptr, "open", name.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return outcome > greatestProblem ? std::string() : "Windows found no browser";
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
    return ToCodePage(FromCodePage(text, nameCodePage), CP_UTF8);
}

}  // namespace vemrado::client
