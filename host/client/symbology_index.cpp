#include "client/symbology_index.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string_view>

#include "client/system.h"
#include "client/text_encoding.h"

namespace vemrado::client {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view whiteSpace = " \t\r\n\v\f";
constexpr char endOfText = 0x1A;
constexpr double widestLine = 100;  // mm; more is no width of a line

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, LowerCase, LowerCase);
}

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

// Takes the characters up to the next separator off the front of a text.
std::string_view TakeField(std::string_view& rest, std::string_view separators = blanks) {
    rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
    const std::string_view field = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(field.size());
    return field;
}

template <typename Number>
Number Leading(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// Past the 32-bit limits a number becomes the limit, as the module reads it.
int LeadingInteger(std::string_view text) {
    return static_cast<int>(std::clamp<int64_t>(Leading<int64_t>(text), INT32_MIN, INT32_MAX));
}

// Takes two numbers joined by a comma, with or without blanks around it, or one number alone. False when the
// first or, after a comma, the second is missing: the line is not read on then.
bool TakePair(std::string_view& rest, std::string_view& first, std::string_view& second) {
    first = TakeField(rest);
    second = {};
    if (first.empty()) return false;
    const size_t comma = first.find(',');
    if (comma == std::string_view::npos) {
        const size_t next = rest.find_first_of(",.+-0123456789");
        if (next == std::string_view::npos || rest[next] != ',') return true;
    } else if (comma + 1 < first.size()) {
        second = first.substr(comma + 1);
        return true;
    }
    second = TakeField(rest, " \t,");
    return !second.empty();
}

struct LineType {
    double width = 0;
    int lineStyle = 1;
};

LineType ReadLineType(std::string_view rest) {
    LineType type;
    std::string_view colour;
    std::string_view width;
    const bool goesOn = TakePair(rest, colour, width);
    type.width = Leading<double>(width);
    if (!(type.width >= 0 && type.width <= widestLine)) type.width = 0;
    const std::string_view style = goesOn ? TakeField(rest) : std::string_view();
    if (!style.empty()) type.lineStyle = LeadingInteger(style);
    return type;
}

// The entry of a directory by its name in any case; the exact name goes first. Empty when there is none.
std::filesystem::path FindEntry(const std::filesystem::path& directory, const std::string& name) {
    std::error_code error;
    if (std::filesystem::exists(directory / name, error)) return directory / name;
    for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        if (EqualIgnoringCase(entry->path().filename().string(), name)) return entry->path();
    }
    return {};
}

// Calls use with each trimmed line of a file until it returns false.
void ForEachLine(const std::filesystem::path& path, const std::function<bool(const std::string&)>& use) {
    if (path.empty()) return;
    std::ifstream file(path, std::ios::binary);
    std::string line;
    while (std::getline(file, line)) {
        const size_t end = line.find(endOfText);
        if (end != std::string::npos) line.resize(end);
        if (!use(std::string(Trimmed(line))) || end != std::string::npos) return;
    }
}

}  // namespace

SymbologyIndex::SymbologyIndex(const std::string& dataDirectory) {
    if (dataDirectory.empty()) return;
    const std::filesystem::path directory = FindEntry(NativePath(dataDirectory), "VKMSym");
    if (directory.empty()) return;

    std::unordered_map<int, LineType> types;  // the last definition counts
    ForEachLine(FindEntry(directory, "WKOKES.CAR"), [&](const std::string& line) {
        std::string_view rest = line;
        const int number = LeadingInteger(TakeField(rest));
        if (number > 0) types[number] = ReadLineType(rest);
        return true;
    });

    const std::filesystem::path mapping = FindEntry(directory, "DKM1_3.TB");
    for (const char section : {'L', 'S'}) {
        const std::string header{':', section};
        bool inside = false;
        ForEachLine(mapping, [&](const std::string& line) {
            if (line.starts_with(':')) {
                if (inside) return false;
                inside = EqualIgnoringCase(line, header);
            } else if (inside && !line.empty() && line[0] != '*') {
                AddMapping(section, line);
            }
            return true;
        });
    }
    for (LineCode& line : lines) {
        const auto type = types.find(line.lineType);
        if (type == types.end()) continue;
        line.width = type->second.width;
        line.dashPattern = std::max(0, -std::max(type->second.lineStyle, -INT32_MAX));
    }
}

void SymbologyIndex::AddMapping(char section, const std::string& line) {
    std::string_view rest = line;
    const std::string_view code = TakeField(rest);
    const std::string_view number = TakeField(rest);
    if (number.empty()) return;
    const std::string name = TextDecoder(Encoding::windows1250).Decode(Trimmed(rest));
    if (section == 'L') {
        if (!lineOfCode.emplace(LeadingInteger(code), lines.size()).second) return;
        lines.push_back({LeadingInteger(code), LeadingInteger(number), name});
    } else {
        if (!symbolOfCode.emplace(LeadingInteger(code), symbols.size()).second) return;
        symbols.push_back({LeadingInteger(code), LeadingInteger(number), name});
    }
}

const SymbologyIndex::LineCode* SymbologyIndex::FindLine(int code) const {
    const auto found = lineOfCode.find(code);
    return found == lineOfCode.end() ? nullptr : &lines[found->second];
}

const SymbologyIndex::SymbolCode* SymbologyIndex::FindSymbol(int code) const {
    const auto found = symbolOfCode.find(code);
    return found == symbolOfCode.end() ? nullptr : &symbols[found->second];
}

}  // namespace vemrado::client
