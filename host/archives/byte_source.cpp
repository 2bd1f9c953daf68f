#include "archives/byte_source.h"

#include <algorithm>

namespace vemrado::archives {

namespace {

std::ifstream OpenFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw ArchiveError("it cannot be opened");
    return file;
}

}  // namespace

bool ByteSource::ReadFully(char* destination, size_t count) {
    while (count > 0) {
        const size_t got = Read(destination, count);
        if (got == 0) return false;
        destination += got;
        count -= got;
    }
    return true;
}

bool ByteSource::Skip(uint64_t count) {
    char passed[16384];
    while (count > 0) {
        const size_t got = Read(passed, static_cast<size_t>(std::min<uint64_t>(count, sizeof passed)));
        if (got == 0) return false;
        count -= got;
    }
    return true;
}

FilePart::FilePart(const std::string& path, uint64_t begin, uint64_t length)
    : file(OpenFile(path)), left(length) {
    file.seekg(static_cast<std::streamoff>(begin));
}

size_t FilePart::Read(char* destination, size_t count) {
    const auto wanted = static_cast<std::streamsize>(std::min<uint64_t>(count, left));
    if (wanted == 0) return 0;
    file.read(destination, wanted);
    if (file.bad()) throw ArchiveError("it cannot be read");
    const auto got = static_cast<size_t>(file.gcount());
    left -= got;
    return got;
}

bool FilePart::Skip(uint64_t count) {
    if (count > left) return false;
    file.seekg(static_cast<std::streamoff>(count), std::ios::cur);
    left -= count;
    return static_cast<bool>(file);
}

uint64_t FileLength(const std::string& path) {
    std::ifstream file = OpenFile(path);
    file.seekg(0, std::ios::end);
    const std::streamoff length = file.tellg();
    if (length < 0) throw ArchiveError("it cannot be read");
    return static_cast<uint64_t>(length);
}

}  // namespace vemrado::archives
