#include "map/checked_lines.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "client/system.h"

namespace vemrado::map {
namespace {

constexpr size_t longestLine = 1023;
constexpr char endCharacter = 0x1A;
constexpr size_t bufferSize = size_t{1} << 18;

std::string Hexadecimal(char c) {
    constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    return {'0', 'x', digits[byte >> 4], digits[byte & 15]};
}

// The bytes for which an encoding has no character; found once, since the system is asked for each.
const std::array<bool, 256>& BytesWithoutCharacter(client::Encoding encoding) {
    using Table = std::array<bool, 256>;
    static const std::array<Table, client::encodingNames.size()> tables = [] {
        std::array<Table, client::encodingNames.size()> made{};
        for (size_t number = 0; number < made.size(); ++number) {
            const auto each = static_cast<client::Encoding>(number);
            if (each == client::Encoding::utf8) continue;
            for (size_t byte = 0x80; byte < made[number].size(); ++byte)
                made[number][byte] = client::CharacterOfByte(each, static_cast<unsigned char>(byte)) == 0;
        }
        return made;
    }();
    return tables[static_cast<size_t>(encoding)];
}

}  // namespace

CheckedLines::CheckedLines(ByteSource byteSource, client::Encoding encoding, FindingSink& findingSink)
    : source(std::move(byteSource)),
      sink(findingSink),
      utf8(encoding == client::Encoding::utf8),
      isBad(BytesWithoutCharacter(encoding)),
      buffer(std::make_unique<char[]>(bufferSize)),
      cursor(buffer.get()),
      filled(buffer.get()) {
    size_t used = 1;  // the first is the zero byte
    for (size_t byte = 0; byte < isBad.size() && used < odd.size(); ++byte) {
        if (isBad[byte]) odd[used++] = static_cast<unsigned char>(byte);
    }
}

namespace {

// All of them are asked, without a branch.
unsigned IsTrue(bool answer) {
    return answer ? 1 : 0;
}

}  // namespace

// Whether some line of a block deserves a closer look.
bool CheckedLines::HasOddBytes(const char* bytes, size_t count) const {
    const auto* const block = reinterpret_cast<const unsigned char*>(bytes);
    unsigned char found = 0;
    if (utf8) {
        for (size_t i = 0; i < count; ++i)
            found |= static_cast<unsigned char>(IsTrue(block[i] >= 0x80) | IsTrue(block[i] == 0));
    } else {
        // Of the few bytes that an encoding does not have; written out so that compilers make wide
        // instructions of it.
        const std::array<unsigned char, 8> set = odd;
        for (size_t i = 0; i < count; ++i) {
            const unsigned char c = block[i];
            found |= static_cast<unsigned char>(
                IsTrue(c == set[0]) | IsTrue(c == set[1]) | IsTrue(c == set[2]) | IsTrue(c == set[3]) |
                IsTrue(c == set[4]) | IsTrue(c == set[5]) | IsTrue(c == set[6]) | IsTrue(c == set[7]));
        }
    }
    return found != 0;
}

// Reads behind what is left in the buffer, which moves to its start.
void CheckedLines::Fill() {
    const auto left = static_cast<size_t>(filled - cursor);
    std::memmove(buffer.get(), cursor, left);
    cursor = buffer.get();
    filled = cursor + left;
    const size_t count = source(filled, bufferSize - left);
    if (count == 0) {
        ended = true;
        return;
    }
    const void* const stop = std::memchr(filled, endCharacter, count);
    ended = stop != nullptr;
    readEnd = filled + count;
    if (ended) behindEndCharacter = static_cast<const char*>(stop) + 1;
    filled = ended ? buffer.get() + (static_cast<const char*>(stop) - buffer.get()) : filled + count;
    hasOddBytes = HasOddBytes(buffer.get(), static_cast<size_t>(filled - buffer.get()));
}

// The character 0x1A ends the file and a carriage return before a line feed is dropped, then lines of at most
// 1023 characters are taken, the line feed among them.
bool CheckedLines::Next(CheckedLine& line) {
    constexpr size_t searched = longestLine + 1;  // a line feed is looked for behind a carriage return too
    while (!ended && static_cast<size_t>(filled - cursor) < searched) Fill();
    if (cursor == filled) return false;
    const auto available = static_cast<size_t>(filled - cursor);
    const auto* const feed =
        static_cast<const char*>(std::memchr(cursor, '\n', std::min(available, searched)));
    const size_t index = feed != nullptr ? static_cast<size_t>(feed - cursor) : 0;
    const bool hasReturn = index > 0 && cursor[index - 1] == '\r';
    const size_t length = index - (hasReturn ? 1 : 0);
    if (feed != nullptr && length < longestLine) {
        TakePiece(length, index + 1, line);
        NoteLineEnd(hasReturn ? LineEnd::carriageReturn : LineEnd::lineFeed, line);
        ++lineNumber;
        column = 1;
        lineGoesOn = false;
    } else {
        const size_t most = std::min(available, longestLine);
        TakePiece(most, most, line);
        column += static_cast<int64_t>(most);
        const bool isCut = most == longestLine && (available > most || !ended);
        if (isCut && !lineGoesOn) Report(Rule::lineTooLong, {lineNumber, column});
        lineGoesOn = isCut;
    }
    return true;
}

void CheckedLines::TakePiece(size_t textLength, size_t length, CheckedLine& line) {
    line.text = {cursor, textLength};
    line.number = lineNumber;
    line.firstColumn = column;
    cursor += length;
    if (hasOddBytes) CheckBytes(line);
    const auto* const carriageReturn =
        static_cast<const char*>(std::memchr(line.text.data(), '\r', line.text.size()));
    if (carriageReturn != nullptr)
        Report(Rule::loneCarriageReturn, line.PlaceOf(carriageReturn), {carriageReturn, 1});
    lastPlace = line.End();
}

void CheckedLines::NoteLineEnd(LineEnd end, const CheckedLine& line) {
    if (firstLineEnd == LineEnd::none) firstLineEnd = end;
    if (end == firstLineEnd || mixedReported) return;
    mixedReported = true;
    Report(Rule::mixedLineEnds, line.End());
}

// A zero byte ends its line; what follows it is lost.
void CheckedLines::CheckBytes(CheckedLine& line) {
    const size_t zero = line.text.find('\0');
    if (zero != std::string_view::npos) {
        Report(Rule::zeroByte, line.PlaceOf(line.text.data() + zero));
        line.text = line.text.substr(0, zero);
    }
    CheckCharacters(line);
}

void CheckedLines::CheckCharacters(const CheckedLine& line) {
    for (size_t i = 0; i < line.text.size();) {
        const char c = line.text[i];
        size_t length = isBad[static_cast<unsigned char>(c)] ? 0 : 1;
        if (utf8) length = client::Utf8SequenceLength(line.text.substr(i));
        if (length == 0)
            Report(Rule::badByte, line.PlaceOf(line.text.data() + i), line.text.substr(i, 1), Hexadecimal(c));
        i += std::max<size_t>(length, 1);
    }
}

void CheckedLines::NoteByteOrderMark() {
    constexpr int64_t length = 3;
    Report(Rule::byteOrderMark, {lineNumber, column});
    column += length;
}

std::optional<Place> CheckedLines::EndCharacter() {
    const auto isNothing = [](char c) {
        return c == endCharacter || c == ' ' || c == '\t' || c == '\r' || c == '\n';
    };
    while (behindEndCharacter != nullptr) {
        if (!std::all_of(behindEndCharacter, readEnd, isNothing)) return Place{lineNumber, column};
        const size_t count = source(buffer.get(), bufferSize);
        if (count == 0) break;
        behindEndCharacter = buffer.get();
        readEnd = behindEndCharacter + count;
    }
    return std::nullopt;
}

void CheckedLines::Report(Rule rule, Place place, std::string_view field, std::string argument) {
    sink.Take({rule, place, field, {std::move(argument), {}}, std::nullopt});
}

}  // namespace vemrado::map
