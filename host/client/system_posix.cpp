#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <langinfo.h>
#include <locale.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "client/stop_request.h"
#include "client/system.h"
#include "client/text_encoding.h"

namespace vemrado::client {
namespace {

volatile sig_atomic_t interruptCaught = 0;

// Ctrl-C, a polite end from outside, and the terminal's end.
constexpr std::array stopSignals = {SIGINT, SIGTERM, SIGHUP};

void OnInterrupt(int) {
    interruptCaught = 1;
}

class Converter {
  public:
    Converter(const char* to, const char* from) : handle(iconv_open(to, from)) {}
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() {
        if (Usable()) iconv_close(handle);
    }

    bool Usable() const { return handle != reinterpret_cast<iconv_t>(-1); }

    // Converts what it can, advancing both ends; false when it stopped early.
    bool Convert(char*& input, size_t& inputLeft, char*& output, size_t& outputLeft) {
        return iconv(handle, &input, &inputLeft, &output, &outputLeft) != static_cast<size_t>(-1);
    }

  private:
    iconv_t handle;
};

// The character set of the user's locale; empty for the C locale, which says nothing of the terminal.
std::string TerminalCharacterSet() {
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr) return {};
    std::string name = nl_langinfo_l(CODESET, user);
    freelocale(user);
    return name == "ANSI_X3.4-1968" || name == "UTF-8" ? std::string() : name;
}

std::string ConvertForTerminal(std::string_view utf8, const std::string& characterSet) {
    Converter converter((characterSet + "//TRANSLIT").c_str(), "UTF-8");
    if (!converter.Usable()) return std::string(utf8);
    std::string input(utf8);
    std::string result(utf8.size() * 4 + 16, '\0');
    char* from = input.data();
    size_t left = input.size();
    char* to = result.data();
    size_t room = result.size();
    while (!converter.Convert(from, left, to, room) && left > 0 && room > 0) {
        *to++ = '?';
        --room;
        const size_t skipped = std::max<size_t>(Utf8SequenceLength({from, left}), 1);
        from += skipped;
        left -= skipped;
    }
    result.resize(result.size() - room);
    return result;
}

WriteResult WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<size_t>(written));
        } else if (errno == EPIPE) {
            return WriteResult::closedPipe;
        } else if (errno != EINTR) {
            return WriteResult::failed;
        }
    }
    return WriteResult::done;
}

// Waits until standard input has data or an interrupt comes, without a gap in which one could be missed.
void WaitForStandardInput() {
    sigset_t stops;
    sigset_t before;
    sigemptyset(&stops);
    for (const int stop : stopSignals) sigaddset(&stops, stop);
    sigprocmask(SIG_BLOCK, &stops, &before);
    if (!StopRequested()) {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        ppoll(&input, 1, nullptr, &before);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

void PrepareStandardStreams() {
    signal(SIGPIPE, SIG_IGN);
}

WriteResult WriteStandardOutput(std::string_view bytes) {
    return WriteAll(STDOUT_FILENO, bytes);
}

bool StandardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

int64_t ReadStandardInput(void* destination, size_t count) {
    while (!StopRequested()) {
        WaitForStandardInput();
        if (StopRequested()) break;
        const ssize_t got = read(STDIN_FILENO, destination, count);
        if (got >= 0 || errno != EINTR) return got;
    }
    return 0;
}

void WriteStandardError(std::string_view utf8) {
    static const std::string characterSet = TerminalCharacterSet();
    if (characterSet.empty()) {
        WriteAll(STDERR_FILENO, utf8);
    } else {
        WriteAll(STDERR_FILENO, ConvertForTerminal(utf8, characterSet));
    }
}

void CatchInterrupt() {
    for (const int stop : stopSignals) {
        struct sigaction before = {};
        if (sigaction(stop, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) continue;
        struct sigaction action = {};
        action.sa_handler = OnInterrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);  // a second one ends a program that does not stop
        sigaction(stop, &action, nullptr);
    }
}

bool InterruptCaught() {
    return interruptCaught != 0;
}

void TakeNamesAsUtf8() {}

std::filesystem::path NativePath(const std::string& path) {
    return path;
}

FileKind KindOfFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return FileKind::none;
    return S_ISREG(status.st_mode)   ? FileKind::regular
           : S_ISDIR(status.st_mode) ? FileKind::directory
                                     : FileKind::other;
}

std::string FollowLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr), &std::free);
    return target ? std::string(target.get()) : path;
}

std::FILE* CreateNewFile(const std::string& path) {
    return std::fopen(path.c_str(), "wbxe");
}

std::FILE* OpenForReading(const std::string& path) {
    return std::fopen(path.c_str(), "rbe");
}

int64_t LengthOfFile(std::FILE* file) {
    struct stat status = {};
    return fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : 0;
}

bool PutInPlace(const std::string& from, const std::string& to) {
    struct stat status = {};
    if (stat(to.c_str(), &status) == 0) chmod(from.c_str(), status.st_mode & 07777);
    return std::rename(from.c_str(), to.c_str()) == 0;
}

std::vector<std::string> ProgramArguments(int count, const char* const* arguments) {
    return {arguments, arguments + count};
}

std::string ProgramPath() {
    const std::string link = "/proc/self/exe";
    const std::string path = FollowLinks(link);
    if (path != link) return path;
    // Without /proc the program's name as it was started, which the kernel hands over.
    const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return started != nullptr ? FollowLinks(started) : std::string();
}

std::string LibraryPath() {
    Dl_info here = {};
    if (dladdr(reinterpret_cast<const void*>(&LibraryPath), &here) == 0 || here.dli_fname == nullptr)
        return {};
    return FollowLinks(here.dli_fname);
}

std::string NewTemporaryFolder() {
    std::string folder = (std::filesystem::temp_directory_path() / "vemrado-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error(folder + ": " + std::strerror(errno));
    return folder;
}

std::string OpenOnDesktop(const std::string& path) {
    const char* const program = "xdg-open";
    std::string name = path;
    char* const arguments[] = {const_cast<char*>(program), name.data(), nullptr};
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_init(&actions);
    // It may stay for as long as the browser does, away from this terminal.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    pid_t child = 0;
    const int problem = posix_spawnp(&child, program, &actions, &attributes, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (problem != 0) return std::string(program) + ": " + std::strerror(problem);
    // Where there is no browser it says so soon.
    constexpr int looks = 30;
    for (int look = 0; look < looks; ++look) {
        int status = 0;
        if (waitpid(child, &status, WNOHANG) == child)
            return status == 0 ? std::string() : std::string(program) + " found no browser";
        usleep(50'000);
    }
    return {};
}

unsigned long ProcessNumber() {
    return static_cast<unsigned long>(getpid());
}

char32_t CharacterOfByte(Encoding encoding, unsigned char byte) {
    constexpr std::array<const char*, 4> systemNames = {"CP1250", "CP852", "ISO-8859-2", "UTF-8"};
    Converter converter("UCS-4LE", systemNames[static_cast<size_t>(encoding)]);
    if (!converter.Usable()) return 0;
    char input = static_cast<char>(byte);
    std::array<unsigned char, 4> character{};
    char* from = &input;
    size_t left = 1;
    char* to = reinterpret_cast<char*>(character.data());
    size_t room = character.size();
    if (!converter.Convert(from, left, to, room) || room != 0) return 0;
    return static_cast<char32_t>(character[0] | character[1] << 8 | character[2] << 16);
}

std::string SystemTextToUtf8(std::string_view text) {
    return TextDecoder(Encoding::utf8).Decode(text);
}

}  // namespace vemrado::client
