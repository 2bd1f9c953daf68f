// UTF-16 to UTF-8. Half a surrogate pair becomes U+FFFD.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vemrado::platform {

// Writes 1 to 4 bytes and returns their number.
inline size_t EncodeUtf8(char32_t character, char* bytes) {
    if (character < 0x80) {
        bytes[0] = static_cast<char>(character);
        return 1;
    }
    const size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (size_t index = length - 1; index > 0; --index, character >>= 6) {
        bytes[index] = static_cast<char>(0x80 | (character & 0x3F));
    }
    constexpr uint8_t lead[5] = {0, 0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(lead[length] | character);
    return length;
}

// Joins surrogate pairs; what it completes goes to put.
class Utf16Decoder {
  public:
    template <class Put>
    void Take(char16_t unit, Put put) {
        const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
        if (high != 0 && isLow) {
            put(0x10000 + ((static_cast<char32_t>(high) - 0xD800) << 10) + (unit - 0xDC00));
            high = 0;
            return;
        }
        Finish(put);
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            high = unit;
        } else {
            put(isLow ? replacement : static_cast<char32_t>(unit));
        }
    }

    template <class Put>
    void Finish(Put put) {
        if (high != 0) put(replacement);
        high = 0;
    }

  private:
    static constexpr char32_t replacement = 0xFFFD;
    char16_t high = 0;  // the first half of a pair, waiting for the second
};

// Bytes that the given number of bytes of UTF-16 can become.
constexpr size_t LargestUtf8Size(size_t utf16Bytes) {
    return utf16Bytes / 2 * 3;
}

// Little-endian, without byte order mark; an odd byte at the end is ignored. Returns the length of text.
inline size_t Utf16ToUtf8(std::string_view bytes, char* text) {
    char* end = text;
    const auto put = [&](char32_t character) { end += EncodeUtf8(character, end); };
    Utf16Decoder decoder;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        decoder.Take(static_cast<char16_t>(static_cast<uint8_t>(bytes[at]) |
                                           (static_cast<uint8_t>(bytes[at + 1]) << 8)),
                     put);
    }
    decoder.Finish(put);
    return static_cast<size_t>(end - text);
}

}  // namespace vemrado::platform
