// Texts of VKM files are bytes in one of a few encodings; our hosts work with UTF-8.

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vemrado::client {

enum class Encoding : int { windows1250, cp852, iso8859_2, utf8 };

// Names by which people choose an encoding, in the order of the enumeration.
inline constexpr std::array<std::string_view, 4> encodingNames = {"windows-1250", "cp852", "iso-8859-2",
                                                                  "utf-8"};

// The encoding of a name as above (case does not matter); none for any other name.
std::optional<Encoding> FindEncoding(std::string_view name);

// The text with its letters A to Z as small ones.
std::string LowerAscii(std::string_view text);

// Length of the valid UTF-8 sequence at the start of a text, 1 to 4; 0 when the text is empty or starts
// otherwise.
size_t Utf8SequenceLength(std::string_view text);

// Appends a character in UTF-8.
void AppendUtf8(char32_t character, std::string& text);

// Gathers what bytes past ASCII say of the encoding that they are in.
class EncodingEvidence {
  public:
    void Add(std::string_view text);

    // The encoding in which the texts make most sense as Czech, Slovak or German; none without a byte past
    // ASCII.
    std::optional<Encoding> Guess() const;

    // The guess, when the texts make much less sense in the encoding that was taken.
    std::optional<Encoding> BetterThan(Encoding taken) const;

  private:
    int64_t Sense(Encoding encoding) const;

    std::array<uint32_t, 128> counts{};  // of the bytes from 0x80 on
    uint64_t utf8Sequences = 0;
    uint64_t otherBytes = 0;  // past ASCII and no part of a UTF-8 sequence
};

// What the user should know of bytes that were no characters, or of a better encoding; empty when all is
// well. The option is what the caller's users write before the name of another encoding, such as "--encoding
// ".
std::string EncodingAdvice(uint64_t replacedBytes, const EncodingEvidence& evidence, Encoding taken,
                           const std::string& option);

// Turns texts of one encoding into UTF-8. A byte without a character becomes U+FFFD and is counted.
class TextDecoder {
  public:
    explicit TextDecoder(Encoding encoding);

    void Append(std::string_view bytes, std::string& utf8);
    std::string Decode(std::string_view bytes);
    // The same, where plain ASCII stays where it stands; what does not is put into the room.
    std::string_view View(std::string_view bytes, std::string& room);

    // Bytes replaced since the decoder was made.
    uint64_t ReplacedBytes() const { return replacedBytes; }
    // What the bytes past ASCII say of their encoding.
    const EncodingEvidence& Evidence() const { return evidence; }

  private:
    struct Sequence {
        std::array<char, 3> bytes{};
        uint8_t length = 0;  // 0: the byte has no character
    };

    using Sequences = std::array<Sequence, 256>;

    static Sequences MakeSequences(Encoding encoding);
    static const Sequences& SequencesOf(Encoding encoding);
    void AppendSingleBytes(std::string_view bytes, std::string& utf8);
    void AppendCheckedUtf8(std::string_view bytes, std::string& utf8);

    Encoding encoding;
    const Sequences* sequences;  // of single-byte encodings
    uint64_t replacedBytes = 0;
    EncodingEvidence evidence;
};

// A text for people's terminals: control characters, which would move the cursor or worse, become \x1B and so
// on. Line feeds stay.
std::string Printable(std::string_view utf8);

// A message of the module as UTF-8. The module's own words are Windows-1250 while file names and the system's
// messages may be UTF-8: what makes a UTF-8 sequence stays, every other byte counts as Windows-1250.
std::string MessageToUtf8(std::string_view message);

}  // namespace vemrado::client
