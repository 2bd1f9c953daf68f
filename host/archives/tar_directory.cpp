#include <algorithm>
#include <cstring>
#include <string_view>

#include "archives/directory.h"

namespace vemrado::archives {

namespace {

constexpr size_t blockLength = 512;
constexpr uint64_t longestName = 65536;

// The fields of a header block.
constexpr size_t nameLength = 100;
constexpr size_t sizePlace = 124;
constexpr size_t sizeLength = 12;
constexpr size_t checksumPlace = 148;
constexpr size_t checksumLength = 8;
constexpr size_t typePlace = 156;
constexpr size_t magicPlace = 257;
constexpr size_t prefixPlace = 345;
constexpr size_t prefixLength = 155;

std::string_view Text(const char* block, size_t place, size_t length) {
    const std::string_view field(block + place, length);
    return field.substr(0, field.find('\0'));
}

// Octal digits, or a binary number where the first bit is set.
uint64_t Number(const char* block, size_t place, size_t length) {
    uint64_t value = 0;
    const bool binary = (static_cast<unsigned char>(block[place]) & 0x80) != 0;
    for (size_t i = place; i < place + length; ++i) {
        const auto byte = static_cast<unsigned char>(block[i]);
        if (binary) {
            if (value >> 55 != 0) throw ArchiveError("it is no whole tar archive: a size is too large");
            value = value << 8 | (i == place ? byte & 0x7Fu : byte);
        } else if (byte >= '0' && byte <= '7') {
            value = value << 3 | (byte - '0' + 0u);
        } else if (byte != ' ' || value != 0) {
            break;
        }
    }
    return value;
}

bool IsEmpty(const char* block) {
    return std::all_of(block, block + blockLength, [](char byte) { return byte == '\0'; });
}

uint64_t Padded(uint64_t size) {
    return (size + blockLength - 1) / blockLength * blockLength;
}

// What records before a file say of it.
struct Extended {
    std::string name;
    uint64_t size = 0;
    bool hasSize = false;
};

// Records "LENGTH KEY=VALUE\n".
void ReadExtended(std::string_view records, Extended& extended) {
    while (!records.empty()) {
        uint64_t length = 0;
        size_t at = 0;
        for (; at < records.size() && at < 8 && records[at] >= '0' && records[at] <= '9'; ++at)
            length = length * 10 + static_cast<uint64_t>(records[at] - '0');
        if (length <= at + 1 || length > records.size()) return;
        std::string_view record = records.substr(at + 1, static_cast<size_t>(length) - at - 2);
        records.remove_prefix(static_cast<size_t>(length));
        if (record.starts_with("path=")) extended.name = record.substr(5);
        if (!record.starts_with("size=") || record.size() > 24) continue;
        extended.hasSize = true;
        extended.size = 0;
        for (const char digit : record.substr(5)) {
            if (digit >= '0' && digit <= '9')
                extended.size = extended.size * 10 + static_cast<uint64_t>(digit - '0');
        }
    }
}

std::string ReadContent(ByteSource& archive, uint64_t size) {
    if (size > longestName) throw ArchiveError("it is no whole tar archive: a name is too long");
    std::string content(static_cast<size_t>(Padded(size)), '\0');
    if (!archive.ReadFully(content.data(), content.size()))
        throw ArchiveError("it is no whole tar archive: it ends too early");
    content.resize(static_cast<size_t>(size));
    return content;
}

std::string NameOf(const char* block, const Extended& extended) {
    if (!extended.name.empty()) return extended.name;
    const bool hasPrefix = Text(block, magicPlace, 6) == "ustar";
    std::string name(hasPrefix ? Text(block, prefixPlace, prefixLength) : std::string_view());
    if (!name.empty()) name += '/';
    return name.append(Text(block, 0, nameLength));
}

// ./sheet.vkm is sheet.vkm
std::string WithoutDot(std::string name) {
    while (name.starts_with("./")) name.erase(0, 2);
    return name;
}

}  // namespace

bool IsTarHeader(const char* block, size_t length) {
    if (length < blockLength || IsEmpty(block)) return false;
    uint64_t sum = 0;
    for (size_t i = 0; i < blockLength; ++i) {
        const bool isChecksum = i >= checksumPlace && i < checksumPlace + checksumLength;
        sum += isChecksum ? ' ' : static_cast<unsigned char>(block[i]);
    }
    return sum == Number(block, checksumPlace, checksumLength);
}

std::vector<Member> TarDirectory(ByteSource& archive) {
    std::vector<Member> members;
    char block[blockLength];
    uint64_t place = 0;
    Extended extended;
    while (archive.ReadFully(block, blockLength) && !IsEmpty(block)) {
        if (!IsTarHeader(block, blockLength))
            throw ArchiveError("it is no whole tar archive: a header is damaged");
        place += blockLength;
        Member member;
        member.size = extended.hasSize ? extended.size : Number(block, sizePlace, sizeLength);
        if (member.size > UINT64_MAX / 4)
            throw ArchiveError("it is no whole tar archive: a size is too large");
        const char type = block[typePlace];
        const bool isHead = type == 'x' || type == 'L';
        if (isHead) {
            const std::string content = ReadContent(archive, member.size);
            if (type == 'x') ReadExtended(content, extended);
            if (type == 'L') extended.name = content.substr(0, content.find('\0'));
        } else {
            member.name = WithoutDot(NameOf(block, extended));
            member.packed = member.size;
            member.place = place;
            extended = {};
            const bool isFile = type == '0' || type == '\0' || type == '7';
            if (isFile && !member.name.ends_with('/')) members.push_back(member);
            if (!archive.Skip(Padded(member.size)))
                throw ArchiveError("it is no whole tar archive: it ends too early");
        }
        place += Padded(member.size);
    }
    for (const Member& member : members) CheckName(member.name);
    return members;
}

}  // namespace vemrado::archives
