#include "client/foreign_file.h"

#include <algorithm>
#include <charconv>

namespace vemrado::client {

namespace {

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view recordLetters = "*DGKLRSTUV";

std::string_view NextField(std::string_view& line) {
    const size_t begin = line.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return line = {};
    const size_t end = std::min(line.find_first_of(blanks, begin), line.size());
    const std::string_view field = line.substr(begin, end - begin);
    line.remove_prefix(end);
    return field;
}

bool NextIsNumber(std::string_view& line) {
    std::string_view field = NextField(line);
    if (field.starts_with('+')) field.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size();
}

std::string_view NextLine(std::string_view& text) {
    const size_t lineEnd = text.find('\n');
    const std::string_view line = text.substr(0, lineEnd);
    text.remove_prefix(lineEnd == std::string_view::npos ? text.size() : lineEnd + 1);
    return line;
}

bool IsRecordMark(std::string_view field) {
    return field.size() == 2 && field[0] == '&' && recordLetters.find(field[1]) != std::string_view::npos;
}

// The line opens a record that no other format has: its letter with the fields that it must have.
bool IsTellingRecord(std::string_view line) {
    const std::string_view mark = NextField(line);
    if (!IsRecordMark(mark)) return false;
    switch (mark[1]) {
        case 'V':
        case 'L':
            NextField(line);
            return NextIsNumber(line) && NextIsNumber(line);
        case 'R':
        case 'T':
            return NextIsNumber(line) && NextIsNumber(line);
        default:
            return false;
    }
}

bool IsText(std::string_view bytes) {
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x20 && byte != '\t' && byte != '\r' && byte != '\n' && byte != '\f') return false;
    }
    return true;
}

// The module takes whatever follows the letter for a part of the mark.
bool OpensRecord(std::string_view line) {
    const std::string_view mark = NextField(line);
    return mark.size() >= 2 && IsRecordMark(mark.substr(0, 2));
}

bool HasRecord(std::string_view text) {
    while (!text.empty()) {
        if (OpensRecord(NextLine(text))) return true;
    }
    return false;
}

struct Signature {
    std::string_view bytes;
    std::string_view kind;
    size_t place = 0;
};

using namespace std::string_view_literals;

constexpr Signature signatures[] = {
    {"\x1F\x8B"sv, "gzip"},
    {"PK\3\4"sv, "zip"},
    {"PK\5\6"sv, "zip"},
    {"BZh"sv, "bzip2"},
    {"\xFD"
     "7zXZ\0"sv,
     "xz"},
    {"\x28\xB5\x2F\xFD"sv, "zstd"},
    {"7z\xBC\xAF\x27\x1C"sv, "7-Zip"},
    {"Rar!\x1A"sv, "RAR"},
    {"ustar"sv, "tar", 257},
    {"\x89PNG\r\n"sv, "PNG"},
    {"\xFF\xD8\xFF"sv, "JPEG"},
    {"GIF8"sv, "GIF"},
    {"II*\0"sv, "TIFF"},
    {"MM\0*"sv, "TIFF"},
    {"%PDF-"sv, "PDF"},
    {"\x7F"
     "ELF"sv,
     "ELF"},
    {"MZ\x90\0"sv, "a Windows program"},
    {"SQLite format 3\0"sv, "SQLite"},
    {"\xD0\xCF\x11\xE0"sv, "an office document"},
    {"\0\0\x27\x0A"sv, "a shape file of polygons or lines"},
    {"\xFF\xFE"sv, "UTF-16 text"},
    {"\xFE\xFF"sv, "UTF-16 text"},
};

std::string_view SignedKind(std::string_view start) {
    for (const Signature& signature : signatures) {
        if (start.size() > signature.place && start.substr(signature.place).starts_with(signature.bytes))
            return signature.kind;
    }
    return {};
}

// Latin text in 16-bit units: every other byte is zero.
bool IsWide(std::string_view start) {
    start = start.substr(0, 200);
    if (start.size() < 4) return false;
    size_t zeros[2] = {0, 0};
    for (size_t i = 0; i < start.size(); ++i) zeros[i % 2] += start[i] == '\0' ? 1U : 0U;
    const size_t half = start.size() / 2;
    return std::min(zeros[0], zeros[1]) == 0 && 10 * std::max(zeros[0], zeros[1]) >= 9 * half;
}

std::string_view UnsignedKind(std::string_view start) {
    constexpr std::string_view space = " \t\r\n\v\f";
    const size_t first = start.find_first_not_of(space);
    if (first == std::string_view::npos || start[first] == '\x1A') return {};  // there is nothing in it
    if (IsWide(start)) return "UTF-16 text";
    if (!IsText(start)) return "binary data";
    if (start[first] == '{' || start[first] == '[') return "JSON";
    return start[first] == '<' ? "XML" : "plain text without a record";
}

}  // namespace

std::string_view ForeignKind(std::string_view start) {
    const std::string_view kind = SignedKind(start);
    if (!kind.empty()) return kind;
    if (start.starts_with(byteOrderMark)) start.remove_prefix(byteOrderMark.size());
    return HasRecord(start) ? std::string_view() : UnsignedKind(start);
}

std::string ForeignFileMessage(const std::string& name, std::string_view kind) {
    return name + ": not a VKM file (looks like " + std::string(kind) + ")";
}

bool IsCertainlyVkm(std::string_view start, bool namedVkm) {
    if (!SignedKind(start).empty()) return false;
    if (start.starts_with(byteOrderMark)) start.remove_prefix(byteOrderMark.size());
    start = start.substr(0, start.find('\x1A'));  // the end of a file in text mode
    if (namedVkm) return HasRecord(start);
    if (!IsText(start)) return false;
    start.remove_prefix(std::min(start.find_first_not_of("\f\r\n"), start.size()));  // of a printer's file
    bool first = true;
    while (!start.empty()) {
        const std::string_view line = NextLine(start);
        std::string_view rest = line;
        const std::string_view field = NextField(rest);
        if (field.empty()) continue;
        if (first && !IsRecordMark(field)) return false;
        first = false;
        if (IsTellingRecord(line)) return true;
    }
    return false;
}

}  // namespace vemrado::client
