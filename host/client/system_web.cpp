// A page, or a script beside it: no keyboard, no standard input, no system tables of characters.

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "client/system.h"
#include "client/text_encoding.h"
#include "windows1250.h"

namespace vemrado::client {
namespace {

// Characters of the bytes 0x80 to 0xFF.
constexpr uint16_t cp852[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x016F, 0x0107, 0x00E7, 0x0142, 0x00EB, 0x0150, 0x0151, 0x00EE,
    0x0179, 0x00C4, 0x0106, 0x00C9, 0x0139, 0x013A, 0x00F4, 0x00F6, 0x013D, 0x013E, 0x015A, 0x015B, 0x00D6,
    0x00DC, 0x0164, 0x0165, 0x0141, 0x00D7, 0x010D, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x0104, 0x0105, 0x017D,
    0x017E, 0x0118, 0x0119, 0x00AC, 0x017A, 0x010C, 0x015F, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502,
    0x2524, 0x00C1, 0x00C2, 0x011A, 0x015E, 0x2563, 0x2551, 0x2557, 0x255D, 0x017B, 0x017C, 0x2510, 0x2514,
    0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x0102, 0x0103, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550,
    0x256C, 0x00A4, 0x0111, 0x0110, 0x010E, 0x00CB, 0x010F, 0x0147, 0x00CD, 0x00CE, 0x011B, 0x2518, 0x250C,
    0x2588, 0x2584, 0x0162, 0x016E, 0x2580, 0x00D3, 0x00DF, 0x00D4, 0x0143, 0x0144, 0x0148, 0x0160, 0x0161,
    0x0154, 0x00DA, 0x0155, 0x0170, 0x00FD, 0x00DD, 0x0163, 0x00B4, 0x00AD, 0x02DD, 0x02DB, 0x02C7, 0x02D8,
    0x00A7, 0x00F7, 0x00B8, 0x00B0, 0x00A8, 0x02D9, 0x0171, 0x0158, 0x0159, 0x25A0, 0x00A0};

// Of 0xA0 to 0xFF; the bytes before are control characters of the same number.
constexpr uint16_t iso8859Part2[96] = {
    0x00A0, 0x0104, 0x02D8, 0x0141, 0x00A4, 0x013D, 0x015A, 0x00A7, 0x00A8, 0x0160, 0x015E, 0x0164,
    0x0179, 0x00AD, 0x017D, 0x017B, 0x00B0, 0x0105, 0x02DB, 0x0142, 0x00B4, 0x013E, 0x015B, 0x02C7,
    0x00B8, 0x0161, 0x015F, 0x0165, 0x017A, 0x02DD, 0x017E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102,
    0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170,
    0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9};

WriteResult WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0) return errno == EPIPE ? WriteResult::closedPipe : WriteResult::failed;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return WriteResult::done;
}

}  // namespace

void PrepareStandardStreams() {}

WriteResult WriteStandardOutput(std::string_view bytes) {
    return WriteAll(STDOUT_FILENO, bytes);
}

bool StandardOutputIsTerminal() {
    return false;
}

int64_t ReadStandardInput(void*, size_t) {
    return 0;
}

void WriteStandardError(std::string_view utf8) {
    WriteAll(STDERR_FILENO, utf8);
}

void CatchInterrupt() {}

bool InterruptCaught() {
    return false;
}

void TakeNamesAsUtf8() {}

std::filesystem::path NativePath(const std::string& path) {
    return path;
}

FileKind KindOfFile(const std::string& path) {
    return access(path.c_str(), R_OK) == 0 ? FileKind::regular : FileKind::none;
}

std::string FollowLinks(const std::string& path) {
    return path;
}

std::FILE* CreateNewFile(const std::string& path) {
    return std::fopen(path.c_str(), "wbx");
}

bool PutInPlace(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

std::FILE* OpenForReading(const std::string& path) {
    return std::fopen(path.c_str(), "rb");
}

int64_t LengthOfFile(std::FILE* file) {
    struct stat status = {};
    return fstat(fileno(file), &status) == 0 ? status.st_size : 0;
}

std::vector<std::string> ProgramArguments(int count, const char* const* arguments) {
    return {arguments, arguments + count};
}

std::string ProgramPath() {
    return {};
}

std::string LibraryPath() {
    return {};
}

unsigned long ProcessNumber() {
    return 1;
}

char32_t CharacterOfByte(Encoding encoding, unsigned char byte) {
    if (byte < 0x80) return byte;
    switch (encoding) {
        case Encoding::windows1250:
            return windows1250::upperHalf[byte - 0x80];
        case Encoding::cp852:
            return cp852[byte - 0x80];
        case Encoding::iso8859_2:
            return byte < 0xA0 ? byte : iso8859Part2[byte - 0xA0];
        case Encoding::utf8:
            break;
    }
    return 0;
}

std::string SystemTextToUtf8(std::string_view text) {
    return TextDecoder(Encoding::utf8).Decode(text);
}

}  // namespace vemrado::client
