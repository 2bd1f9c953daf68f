#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>

#include "archives/directory.h"
#include "archives/unpacked.h"

namespace vemrado::archives {

namespace {

constexpr uint32_t endSignature = 0x06054b50;
constexpr uint32_t end64Signature = 0x06064b50;
constexpr uint32_t end64LocatorSignature = 0x07064b50;
constexpr uint32_t entrySignature = 0x02014b50;
constexpr uint32_t localSignature = 0x04034b50;
constexpr size_t endLength = 22;
constexpr size_t end64LocatorLength = 20;
constexpr size_t end64Length = 56;
constexpr size_t entryLength = 46;
constexpr size_t localLength = 30;
constexpr uint64_t longestDirectory = uint64_t{1} << 30;
constexpr uint16_t stored = 0;
constexpr uint16_t deflated = 8;

[[noreturn]] void Damaged(const char* what) {
    throw ArchiveError(std::string("it is no whole zip archive: ") + what);
}

// Little-endian numbers of a text that is long enough.
template <typename Number>
Number NumberAt(std::string_view bytes, size_t place) {
    uint64_t value = 0;
    for (size_t i = sizeof(Number); i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
    return static_cast<Number>(value);
}
constexpr auto Number16 = NumberAt<uint16_t>;
constexpr auto Number32 = NumberAt<uint32_t>;
constexpr auto Number64 = NumberAt<uint64_t>;

std::string Bytes(const std::string& path, uint64_t place, size_t count) {
    std::string bytes(count, '\0');
    FilePart part(path, place, count);
    if (!part.ReadFully(bytes.data(), count)) Damaged("it ends too early");
    return bytes;
}

// Where the directory lies.
struct DirectoryPlace {
    uint64_t entries = 0;
    uint64_t begin = 0;
    uint64_t length = 0;
};

// In an archive of many or large files the last record points to a longer one.
DirectoryPlace ReadEnd64(const std::string& path, uint64_t locatorPlace) {
    const std::string locator = Bytes(path, locatorPlace, end64LocatorLength);
    if (Number32(locator, 0) != end64LocatorSignature) Damaged("its directory is not found");
    const uint64_t place = Number64(locator, 8);
    if (place > locatorPlace || locatorPlace - place < end64Length) Damaged("its directory is not found");
    const std::string end = Bytes(path, place, end64Length);
    if (Number32(end, 0) != end64Signature) Damaged("its directory is not found");
    return {Number64(end, 32), Number64(end, 48), Number64(end, 40)};
}

DirectoryPlace FindDirectory(const std::string& path, uint64_t fileLength) {
    constexpr size_t longestComment = 65535;
    const auto tailLength = static_cast<size_t>(std::min<uint64_t>(fileLength, endLength + longestComment));
    if (tailLength < endLength) Damaged("it is too short");
    const std::string tail = Bytes(path, fileLength - tailLength, tailLength);
    for (size_t at = tailLength - endLength + 1; at-- > 0;) {
        if (Number32(tail, at) != endSignature) continue;
        if (at + endLength + Number16(tail, at + 20) > tailLength) continue;
        DirectoryPlace place = {Number16(tail, at + 10), Number32(tail, at + 16), Number32(tail, at + 12)};
        const uint64_t end = fileLength - tailLength + at;
        const bool isLong =
            place.entries == 0xFFFF || place.begin == 0xFFFFFFFF || place.length == 0xFFFFFFFF;
        if (isLong && end >= end64LocatorLength) place = ReadEnd64(path, end - end64LocatorLength);
        if (place.begin > end || place.length > end - place.begin) Damaged("its directory is not found");
        if (place.length > longestDirectory) Damaged("its directory is longer than 1 GiB");
        return place;
    }
    Damaged("its directory is missing");
}

// Numbers that do not fit into 32 bits stand in an extra field.
void ReadLongNumbers(std::string_view extra, Member& member) {
    while (extra.size() >= 4) {
        const uint16_t kind = Number16(extra, 0);
        const uint16_t length = Number16(extra, 2);
        if (extra.size() - 4 < length) return;
        std::string_view field = extra.substr(4, length);
        extra.remove_prefix(4 + size_t{length});
        if (kind != 1) continue;
        for (uint64_t* number : {&member.size, &member.packed, &member.place}) {
            if (*number != 0xFFFFFFFF) continue;
            if (field.size() < 8) Damaged("an entry is too short");
            *number = Number64(field, 0);
            field.remove_prefix(8);
        }
    }
}

// An entry of the directory; it is taken off the bytes.
Member ReadEntry(std::string_view& bytes) {
    if (bytes.size() < entryLength || Number32(bytes, 0) != entrySignature) Damaged("an entry is missing");
    const size_t nameLength = Number16(bytes, 28);
    const size_t extraLength = Number16(bytes, 30);
    const size_t length = entryLength + nameLength + extraLength + Number16(bytes, 32);
    if (bytes.size() < length) Damaged("an entry is too short");
    Member member;
    member.name = bytes.substr(entryLength, nameLength);
    std::ranges::replace(member.name, '\\', '/');
    member.encrypted = (Number16(bytes, 8) & 1) != 0;
    member.method = Number16(bytes, 10);
    member.checksum = Number32(bytes, 16);
    member.packed = Number32(bytes, 20);
    member.size = Number32(bytes, 24);
    member.place = Number32(bytes, 42);
    ReadLongNumbers(bytes.substr(entryLength + nameLength, extraLength), member);
    bytes.remove_prefix(length);
    return member;
}

// Every entry must end before the next one begins: one packed stream that many entries share swamps a reader.
void CheckPlaces(std::vector<Member>& members, uint64_t directoryBegin) {
    std::vector<Member*> byPlace;
    for (Member& member : members) byPlace.push_back(&member);
    std::ranges::sort(byPlace, {}, &Member::place);
    for (size_t i = 0; i < byPlace.size(); ++i) {
        Member& member = *byPlace[i];
        member.limit = i + 1 < byPlace.size() ? byPlace[i + 1]->place : directoryBegin;
        const uint64_t room = member.limit > member.place ? member.limit - member.place : 0;
        if (room < localLength || room - localLength < member.packed)
            throw ArchiveError("its entries lie over each other: " + member.name);
    }
}

}  // namespace

std::vector<Member> ZipDirectory(const std::string& path) {
    const DirectoryPlace place = FindDirectory(path, FileLength(path));
    if (place.entries > place.length / entryLength) Damaged("an entry is missing");
    const std::string bytes = Bytes(path, place.begin, static_cast<size_t>(place.length));
    std::string_view left = bytes;
    std::vector<Member> members;
    for (uint64_t i = 0; i < place.entries; ++i) members.push_back(ReadEntry(left));
    CheckPlaces(members, place.begin);
    std::erase_if(members, [](const Member& member) { return member.name.ends_with('/'); });
    for (const Member& member : members) CheckName(member.name);
    return members;
}

std::unique_ptr<ByteSource> OpenZipMember(const std::string& path, const Member& member) {
    if (member.encrypted) throw ArchiveError("it is encrypted");
    if (member.method != stored && member.method != deflated)
        throw ArchiveError("it is packed by a method other than deflate");
    const std::string local = Bytes(path, member.place, localLength);
    if (Number32(local, 0) != localSignature) Damaged("an entry has no header");
    const uint64_t begin = member.place + localLength + Number16(local, 26) + Number16(local, 28);
    if (begin > member.limit || member.limit - begin < member.packed)
        throw ArchiveError("its entries lie over each other: " + member.name);
    std::unique_ptr<ByteSource> bytes = std::make_unique<FilePart>(path, begin, member.packed);
    if (member.method == deflated) bytes = std::make_unique<Unpacked>(std::move(bytes), Unpacked::Form::raw);
    return std::make_unique<Checked>(std::move(bytes), member.size, member.checksum);
}

void CheckName(const std::string& name) {
    const bool isAbsolute = name.starts_with('/') || (name.size() > 1 && name[1] == ':');
    bool leadsOut = isAbsolute;
    for (size_t begin = 0; begin <= name.size();) {
        const size_t end = std::min(name.find('/', begin), name.size());
        leadsOut |= std::string_view(name).substr(begin, end - begin) == "..";
        begin = end + 1;
    }
    if (leadsOut) throw ArchiveError("a name in it leads out of it: " + name);
    if (name.find('\0') != std::string::npos) throw ArchiveError("a name in it holds a zero byte");
}

}  // namespace vemrado::archives
