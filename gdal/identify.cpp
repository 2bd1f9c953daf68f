#include "identify.h"

#include <charconv>

namespace vemrado::gdal {

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
        if (value < 0x20 && byte != '\t' && byte != '\r' && byte != '\n') return false;
    }
    return true;
}

}  // namespace

bool LooksLikeVkm(std::string_view start, bool namedVkm) {
    start = start.substr(0, start.find('\x1A'));  // the end of a file in text mode
    if (!IsText(start)) return false;
    bool first = true;
    while (!start.empty()) {
        const size_t lineEnd = start.find('\n');
        std::string_view line = start.substr(0, lineEnd);
        start.remove_prefix(lineEnd == std::string_view::npos ? start.size() : lineEnd + 1);
        std::string_view rest = line;
        const std::string_view field = NextField(rest);
        if (field.empty()) continue;
        if (first && !IsRecordMark(field)) return false;
        first = false;
        if (IsTellingRecord(line)) return true;
    }
    return namedVkm && !first;
}

}  // namespace vemrado::gdal
