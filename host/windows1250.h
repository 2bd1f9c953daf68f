// Windows-1250, the code page of the module's texts, for hosts that write to a terminal.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace windows1250 {

// Characters of the bytes 0x80 to 0xFF; 0: the byte has none.
inline constexpr uint16_t upperHalf[128] = {
    0x20AC, 0,      0x201A, 0,      0x201E, 0x2026, 0x2020, 0x2021, 0,      0x2030, 0x0160, 0x2039, 0x015A,
    0x0164, 0x017D, 0x0179, 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0,      0x2122,
    0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B, 0x00B0, 0x00B1, 0x02DB, 0x0142,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C, 0x0154,
    0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD,
    0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA,
    0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4,
    0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9};

// Length of the UTF-8 sequence of several bytes at the start of the text; 0 when there is none.
inline size_t Utf8SequenceLength(std::string_view text) {
    const auto byte = [&](size_t index) { return static_cast<uint8_t>(text[index]); };
    const size_t length = byte(0) >= 0xC2 && byte(0) <= 0xDF   ? 2
                          : byte(0) >= 0xE0 && byte(0) <= 0xEF ? 3
                          : byte(0) >= 0xF0 && byte(0) <= 0xF4 ? 4
                                                               : 0;
    if (length == 0 || length > text.size()) return 0;
    for (size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) return 0;
    }
    return length;
}

// A text for a terminal. Boxes mix the module's texts with file names in the system's encoding, so what
// already is UTF-8 stays as it is; no Czech or German word of the module reads as UTF-8.
inline std::string ToUtf8(std::string_view text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<uint8_t>(text[at]);
        if (byte < 0x80) {
            result += text[at];
        } else if (const size_t length = Utf8SequenceLength(text.substr(at)); length != 0) {
            result += text.substr(at, length);
            at += length - 1;
        } else {
            const uint16_t character = upperHalf[byte - 0x80] != 0 ? upperHalf[byte - 0x80] : 0xFFFD;
            if (character >= 0x800) result += static_cast<char>(0xE0 | (character >> 12));
            if (character >= 0x800) result += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
            if (character < 0x800) result += static_cast<char>(0xC0 | (character >> 6));
            result += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return result;
}

}  // namespace windows1250
