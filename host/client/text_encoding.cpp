#include "client/text_encoding.h"

#include <algorithm>
#include <cstring>

#include "client/system.h"

namespace vemrado::client {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsAscii(std::string_view text) {
    constexpr uint64_t highBits = 0x8080808080808080;
    uint64_t all = 0;
    for (; text.size() >= sizeof all; text.remove_prefix(sizeof all)) {
        uint64_t eight;
        std::memcpy(&eight, text.data(), sizeof eight);
        all |= eight;
    }
    for (const char letter : text) all |= static_cast<unsigned char>(letter);
    return (all & highBits) == 0;
}

}  // namespace

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

std::optional<Encoding> FindEncoding(std::string_view name) {
    for (size_t i = 0; i < encodingNames.size(); ++i) {
        const std::string_view known = encodingNames[i];
        if (std::equal(name.begin(), name.end(), known.begin(), known.end(),
                       [](char a, char b) { return Lower(a) == b; })) {
            return static_cast<Encoding>(i);
        }
    }
    return std::nullopt;
}

size_t Utf8SequenceLength(std::string_view text) {
    if (text.empty()) return 0;
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    // Overlong forms, surrogates and what lies past U+10FFFF are no characters.
    const bool outside = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                         (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F);
    return outside ? 0 : length;
}

void AppendUtf8(char32_t character, std::string& text) {
    const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6));
        put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

TextDecoder::Sequences TextDecoder::MakeSequences(Encoding encoding) {
    Sequences sequences{};
    if (encoding == Encoding::utf8) return sequences;
    std::string utf8;
    for (size_t byte = 0; byte < sequences.size(); ++byte) {
        const char32_t character = byte < 0x80 ? static_cast<char32_t>(byte)
                                               : CharacterOfByte(encoding, static_cast<unsigned char>(byte));
        if (byte != 0 && character == 0) continue;
        utf8.clear();
        AppendUtf8(character, utf8);
        Sequence& sequence = sequences[byte];
        sequence.length = static_cast<uint8_t>(std::min(utf8.size(), sequence.bytes.size()));
        std::copy_n(utf8.begin(), sequence.length, sequence.bytes.begin());
    }
    return sequences;
}

// The system takes its time to tell of a byte, and there are decoders for every one of many small files.
const TextDecoder::Sequences& TextDecoder::SequencesOf(Encoding encoding) {
    static const auto all = [] {
        std::array<Sequences, encodingNames.size()> made;
        for (size_t i = 0; i < made.size(); ++i) made[i] = MakeSequences(static_cast<Encoding>(i));
        return made;
    }();
    return all[static_cast<size_t>(encoding)];
}

TextDecoder::TextDecoder(Encoding textEncoding)
    : encoding(textEncoding), sequences(&SequencesOf(textEncoding)) {}

void TextDecoder::Append(std::string_view bytes, std::string& utf8) {
    if (IsAscii(bytes)) {
        utf8.append(bytes);
        return;
    }
    evidence.Add(bytes);
    if (encoding == Encoding::utf8) {
        AppendCheckedUtf8(bytes, utf8);
    } else {
        AppendSingleBytes(bytes, utf8);
    }
}

std::string TextDecoder::Decode(std::string_view bytes) {
    std::string utf8;
    Append(bytes, utf8);
    return utf8;
}

std::string_view TextDecoder::View(std::string_view bytes, std::string& room) {
    if (IsAscii(bytes)) return bytes;
    room.clear();
    Append(bytes, room);
    return room;
}

void TextDecoder::AppendSingleBytes(std::string_view bytes, std::string& utf8) {
    for (const char letter : bytes) {
        const Sequence& sequence = (*sequences)[static_cast<unsigned char>(letter)];
        if (sequence.length > 0) {
            utf8.append(sequence.bytes.data(), sequence.length);
        } else {
            utf8 += replacementCharacter;
            ++replacedBytes;
        }
    }
}

void TextDecoder::AppendCheckedUtf8(std::string_view bytes, std::string& utf8) {
    while (!bytes.empty()) {
        const size_t length = Utf8SequenceLength(bytes);
        if (length > 0) {
            utf8 += bytes.substr(0, length);
        } else {
            utf8 += replacementCharacter;
            ++replacedBytes;
        }
        bytes.remove_prefix(std::max<size_t>(length, 1));
    }
}

std::string Printable(std::string_view utf8) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string shown;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const bool simple = (byte < 0x20 && byte != '\n') || byte == 0x7F;
        // U+0080 to U+009F have two bytes.
        const bool wide =
            byte == 0xC2 && i + 1 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) < 0xA0;
        if (!simple && !wide) {
            shown += utf8[i];
            continue;
        }
        const auto control = static_cast<unsigned char>(wide ? utf8[++i] : utf8[i]);
        shown += {'\\', 'x', digits[control >> 4], digits[control & 15]};
    }
    return shown;
}

std::string MessageToUtf8(std::string_view message) {
    TextDecoder centralEuropean(Encoding::windows1250);
    std::string utf8;
    while (!message.empty()) {
        const size_t length = Utf8SequenceLength(message);
        if (length > 0) {
            utf8 += message.substr(0, length);
        } else {
            centralEuropean.Append(message.substr(0, 1), utf8);
        }
        message.remove_prefix(std::max<size_t>(length, 1));
    }
    return utf8;
}

}  // namespace vemrado::client
