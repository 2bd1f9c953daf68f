#include "symbols/tagged_file.h"

#include <algorithm>
#include <array>

namespace vemrado {

using platform::Origin;

namespace {

constexpr uint8_t magicNumber[] = {0xC4, 0x4A, 0xB1, 0x29};
constexpr int64_t firstRecord = sizeof magicNumber;
constexpr int32_t longestHeader = 256;  // name, type character and "="
constexpr std::string_view typeCharacters = "%&#$@~!";

struct ByteRange {
    uint8_t first;
    uint8_t last;
};
// What may stand in a name: digits, letters, "." and "_", and the letters of Windows-1250. Not the zero byte:
// it is no character of a header and ends the records like any other byte that has no place there.
constexpr ByteRange nameRanges[] = {{'.', '.'},   {'0', '9'},   {'A', 'Z'},   {'_', '_'},   {'a', 'z'},
                                    {0x8A, 0x8A}, {0x8C, 0x8F}, {0x9A, 0x9A}, {0x9C, 0x9F}, {0xA5, 0xA5},
                                    {0xAA, 0xAA}, {0xAF, 0xAF}, {0xB9, 0xBA}, {0xBC, 0xBC}, {0xBE, 0xD6},
                                    {0xD8, 0xDE}, {0xE0, 0xF6}, {0xF8, 0xFE}};

constexpr std::array<bool, 256> MakeNameBytes() {
    std::array<bool, 256> bytes{};
    for (const ByteRange& range : nameRanges) {
        for (int byte = range.first; byte <= range.last; ++byte) bytes[static_cast<size_t>(byte)] = true;
    }
    return bytes;
}
constexpr std::array<bool, 256> isNameByte = MakeNameBytes();
static_assert(std::count(isNameByte.begin(), isNameByte.end(), true) == 142);

}  // namespace

CTaggedFileReader::CTaggedFileReader(const char* path, int readOnly) {
    if (path != nullptr && path[0] != '\0') {
        SetName(path);
        readerFlags |= flagNamed;
    }
    if (readOnly != 0) readerFlags |= flagReadOnly;
}

void CTaggedFileReader::Close() {
    ReleaseHandle();
    readerFlags = 0;
    recordName = CSharedString();
}

int32_t CTaggedFileReader::Check() {
    if ((readerFlags & flagChecked) != 0) return state;
    if ((readerFlags & flagNamed) == 0) return taggedFileError;
    bool exists;
    {
        const platform::CriticalErrorGuard guard;
        platform::File probe;
        exists = probe.Open(Name());
    }
    fileLength = exists ? Length() : 0;
    if (TakeError() != 0) return state = taggedFileError;
    readerFlags |= flagChecked;
    if (fileLength == 0) return state = taggedFileMissing;
    uint8_t start[sizeof magicNumber] = {};
    const int64_t count = Read(start, sizeof start);
    if (TakeError() != 0) return state = taggedFileError;
    const bool valid = count == sizeof start && std::equal(std::begin(start), std::end(start), magicNumber);
    return state = valid ? taggedFileValid : taggedFileForeign;
}

bool CTaggedFileReader::Usable() {
    return (readerFlags & flagNamed) != 0 && Check() == taggedFileValid;
}

int CTaggedFileReader::Rewind() {
    if (!Usable()) return 0;
    EndValue();
    if (Seek(firstRecord, Origin::start) == firstRecord) return 1;
    FailForGood();
    return 0;
}

// An input error is final: the handle goes, and no operation reads any more.
void CTaggedFileReader::FailForGood() {
    ReleaseHandle();
    state = taggedFileError;
}

bool CTaggedFileReader::InputErrorTaken() {
    if (TakeError() == 0) return false;
    FailForGood();
    return true;
}

// A type character ends the name; a later one takes its place. 0 when no header stands here.
int CTaggedFileReader::ScanName() {
    char name[longestHeader];
    int32_t length = 0;
    for (int32_t i = 0; i < longestHeader; ++i) {
        uint8_t byte = 0;
        if (Read(&byte, 1) != 1) return 0;
        if (byte == '=') break;
        const size_t type = typeCharacters.find(static_cast<char>(byte));
        if (type != std::string_view::npos) {
            typeIndex = static_cast<int32_t>(type);
        } else if (!isNameByte[byte]) {
            return 0;
        } else if (typeIndex == taggedNone) {
            name[length++] = static_cast<char>(byte);
        }
    }
    if (typeIndex == taggedNone) return 0;
    recordName.Assign(name, length);
    return 1;
}

bool CTaggedFileReader::ReadNumber(uint32_t& number, int32_t bytes) {
    uint8_t raw[4] = {};
    if (Read(raw, bytes) != bytes) return false;
    number = raw[0] | static_cast<uint32_t>(raw[1]) << 8 | static_cast<uint32_t>(raw[2]) << 16 |
             static_cast<uint32_t>(raw[3]) << 24;
    return true;
}

bool CTaggedFileReader::ReadSizes() {
    switch (typeIndex) {
        case taggedInt16:
        case taggedInt32:
        case taggedReal:
            size = 2u << typeIndex;
            return true;
        case taggedShortBlock:
            return ReadNumber(size, 2);
        case taggedPair:
            return ReadNumber(size, 4) && ReadNumber(secondSize, 4);
        default:
            return ReadNumber(size, 4);
    }
}

int CTaggedFileReader::ReadHeader() {
    if ((readerFlags & flagInPieces) != 0 && SkipValue() == 0) return 0;
    recordName = CSharedString();
    typeIndex = taggedNone;
    const bool read = ScanName() != 0 && ReadSizes();
    if (InputErrorTaken() || !read) return 0;
    readerFlags |= flagPending;
    return 1;
}

int CTaggedFileReader::NextRecord(CSharedString& name, int32_t& typeOut, uint32_t& sizeOut) {
    if (!Usable()) return 0;
    if ((readerFlags & flagPending) != 0 && SkipValue() == 0) return 0;
    if (ReadHeader() == 0) return 0;
    name = recordName;
    typeOut = typeIndex;
    sizeOut = typeIndex == taggedPair ? secondSize : size;
    return 1;
}

int CTaggedFileReader::SkipValue() {
    if ((readerFlags & flagPending) == 0) return 0;
    const uint32_t left = (readerFlags & flagInPieces) != 0 ? remaining : size;
    EndValue();
    // A value may promise more than the file has; no seek leads beyond the end.
    const int64_t target = std::min<int64_t>(Position() + left, fileLength);
    if (Seek(target, Origin::start) == target) return 1;
    FailForGood();
    return 0;
}

uint32_t CTaggedFileReader::ReadValue(void* destination, uint32_t count) {
    if ((readerFlags & flagInPieces) != 0) {
        if (remaining == 0) {
            EndValue();
            return 0;
        }
    } else {
        if (!Usable()) return 0;
        if ((readerFlags & flagPending) == 0 && ReadHeader() == 0) return 0;
        if (typeIndex == taggedPair) return 0;
        remaining = size;
        readerFlags |= flagInPieces;
    }
    const int64_t wanted = count > 0 ? std::min(count, remaining) : remaining;
    const int64_t read = std::max<int64_t>(Read(destination, wanted), 0);
    remaining -= static_cast<uint32_t>(read);
    if (count == 0) {
        EndValue();
        remaining = 0;
    }
    return InputErrorTaken() ? 0 : static_cast<uint32_t>(read);
}

}  // namespace vemrado
