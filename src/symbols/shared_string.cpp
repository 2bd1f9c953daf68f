#include "symbols/shared_string.h"

#include <cstring>

#include "support/memory_pool.h"

namespace vemrado {

namespace {

constexpr uint32_t countSize = 2;
constexpr uint32_t headerSize = countSize + 4;
constexpr uint32_t terminatorSize = 2;
constexpr uint16_t fullCount = 65535;
constexpr int32_t longestString = 0x7FFFFFFF - static_cast<int32_t>(headerSize + terminatorSize);

void ClearError(SharedStringError) {
    sharedStringError = SharedStringError::none;
}

// Count 0, length 0: never counted and never freed.
char emptyBlock[headerSize + terminatorSize] = {};
char* const emptyCharacters = emptyBlock + headerSize;

// The length stands at an odd multiple of two, so both fields are copied, not pointed at.
uint16_t CountOf(const char* characters) {
    uint16_t count;
    std::memcpy(&count, characters - headerSize, sizeof count);
    return count;
}

void SetCount(char* characters, uint16_t count) {
    std::memcpy(characters - headerSize, &count, sizeof count);
}

int32_t LengthOf(const char* characters) {
    int32_t length;
    std::memcpy(&length, characters - headerSize + countSize, sizeof length);
    return length;
}

void ReportFault(SharedStringError error) {
    sharedStringError = error;
    if (sharedStringErrorHook != nullptr) sharedStringErrorHook(error);
}

}  // namespace

std::atomic<SharedStringError> sharedStringError = SharedStringError::none;
void (*sharedStringErrorHook)(SharedStringError error) = ClearError;

CSharedString::CSharedString() : characters(emptyCharacters) {}

CSharedString::CSharedString(const CSharedString& other) : characters(other.Share()) {}

CSharedString& CSharedString::operator=(const CSharedString& other) {
    char* shared = other.Share();
    Release();
    characters = shared;
    return *this;
}

CSharedString::~CSharedString() {
    Release();
}

int32_t CSharedString::Length() const {
    return characters != nullptr ? LengthOf(characters) : 0;
}

void CSharedString::Assign(const char* text) {
    if (text == nullptr) return;
    const size_t length = std::strlen(text);
    Assign(text, length < static_cast<size_t>(longestString) ? static_cast<int32_t>(length) : longestString);
}

void CSharedString::Assign(const char* text, int32_t length) {
    if (text == nullptr) return;
    if (length < 0) {
        ReportFault(SharedStringError::negativeLength);
        return;
    }
    char* made = MakeBlock(text, length);  // before the release: the text may be this string's own
    Release();
    characters = made;
}

char* CSharedString::MakeBlock(const char* text, int32_t length) {
    if (length == 0) return emptyCharacters;
    const uint32_t size = headerSize + static_cast<uint32_t>(length) + terminatorSize;
    char* block = static_cast<char*>(stringPool.Alloc(size));
    if (block == nullptr) {
        ReportFault(SharedStringError::noMemory);
        return emptyCharacters;
    }
    char* made = block + headerSize;
    SetCount(made, 1);
    std::memcpy(made - headerSize + countSize, &length, sizeof length);
    std::memcpy(made, text, static_cast<size_t>(length));
    std::memset(made + length, 0, terminatorSize);
    return made;
}

char* CSharedString::Share() const {
    if (characters == nullptr || characters == emptyCharacters) return characters;
    const uint16_t count = CountOf(characters);
    if (count == fullCount) {
        ReportFault(SharedStringError::noMemory);
        return nullptr;
    }
    SetCount(characters, static_cast<uint16_t>(count + 1));
    return characters;
}

void CSharedString::Release() {
    if (characters == nullptr || characters == emptyCharacters) return;
    const uint16_t count = CountOf(characters);
    if (count == 0) {
        ReportFault(SharedStringError::alreadyReleased);
        return;
    }
    SetCount(characters, static_cast<uint16_t>(count - 1));
    if (count == 1) stringPool.Free(characters - headerSize);
}

}  // namespace vemrado
