// The lines of a map file with their places, as the reader of a map gets them, and what is wrong with their
// bytes.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "client/text_encoding.h"
#include "map/findings.h"

namespace vemrado::map {

// Gives the next bytes of a file: writes at most count of them and returns how many, 0 at the end. May throw.
using ByteSource = std::function<size_t(char* to, size_t count)>;

// A line of at most 1023 characters; a longer one of the file comes in pieces.
struct CheckedLine {
    std::string_view text;    // without its line end; valid until the next line
    int64_t number = 1;       // of the file's line
    int64_t firstColumn = 1;  // of the text in it

    Place PlaceOf(const char* character) const { return {number, firstColumn + (character - text.data())}; }
    Place End() const { return PlaceOf(text.data() + text.size()); }
};

// Reads blocks into one buffer, so its memory does not grow with the file.
class CheckedLines {
  public:
    // The sink must outlive it.
    CheckedLines(ByteSource source, client::Encoding encoding, FindingSink& sink);

    // The next line; false at the end of the file.
    bool Next(CheckedLine& line);

    // Before the first line: a byte order mark stood before what the source gives.
    void NoteByteOrderMark();

    // Where a character 0x1A ended the file before its end; none when it ended of itself, or nothing stands
    // behind the character. After the last line.
    std::optional<Place> EndCharacter();

    // The last place that was read.
    Place LastPlace() const { return lastPlace; }

  private:
    enum class LineEnd : uint8_t { none, lineFeed, carriageReturn };

    void Fill();
    bool HasOddBytes(const char* bytes, size_t count) const;
    void TakePiece(size_t textLength, size_t length, CheckedLine& line);
    void NoteLineEnd(LineEnd end, const CheckedLine& line);
    void CheckBytes(CheckedLine& line);
    void CheckCharacters(const CheckedLine& line);
    void Report(Rule rule, Place place, std::string_view field = {}, std::string argument = {});

    ByteSource source;
    FindingSink& sink;
    bool utf8;
    const std::array<bool, 256>& isBad;  // the encoding has no character for the byte
    std::array<unsigned char, 8> odd{};  // bytes that make a block worth a closer look
    std::unique_ptr<char[]> buffer;
    char* cursor;
    char* filled;
    bool ended = false;                        // at the end of the source or at a character 0x1A
    const char* behindEndCharacter = nullptr;  // what was read of it, up to readEnd
    const char* readEnd = nullptr;
    bool hasOddBytes = false;  // somewhere in the buffer
    LineEnd firstLineEnd = LineEnd::none;
    bool mixedReported = false;
    int64_t lineNumber = 1;
    int64_t column = 1;
    bool lineGoesOn = false;  // a piece of the line has been given
    Place lastPlace;
};

}  // namespace vemrado::map
