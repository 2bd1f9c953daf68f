#include "support/table_text.h"

#include <algorithm>

#include "platform/ascii_case.h"
#include "support/numbers.h"

namespace vemrado {

namespace {

constexpr size_t failureTextSize = 1024;
// One character of the limit is the line feed's.
constexpr size_t lineLimit = TableFile::longestLine + 1;
constexpr size_t fileBufferSize = 2 * TableFile::longestLine;

constexpr bool IsWhite(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Characters at which a number or the comma before one may begin.
constexpr bool IsPairMark(char c) {
    return c == ',' || c == '.' || c == '+' || c == '-' || (c >= '0' && c <= '9');
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsWhite(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsWhite(text.back())) text.remove_suffix(1);
    return text;
}

bool TableFile::Open(const String& path, const char* note) {
    filePath = path;
    readFailed = false;
    if (file.Open(path.c_str(), fileBufferSize)) return true;
    char reason[failureTextSize];
    file.FailureText(path.c_str(), reason, sizeof reason);
    String warning(reason);
    if (note != nullptr) warning.append("\n").append(note);
    problems.AddMessage(warning.c_str());
    return false;
}

void TableFile::Rewind() {
    if (!file.Rewind()) ReportReadFailure();
}

void TableFile::ReportReadFailure() {
    readFailed = true;
    char reason[failureTextSize];
    file.FailureReason(reason, sizeof reason);
    problems.AddFileMessage(filePath.c_str(), reason);
}

bool TableFile::NextLine(std::string_view& line) {
    if (readFailed) return false;
    bool hadLineFeed = false;
    const platform::ReadResult result = file.ReadLine(lineLimit, line, hadLineFeed);
    if (result == platform::ReadResult::error) ReportReadFailure();
    if (result != platform::ReadResult::line) return false;
    if (!hadLineFeed && file.LineGoesOn()) {
        // The view would not outlive the reading of the rest.
        longLine.assign(line);
        if (!DropRestOfLine()) return false;
        line = longLine;
    }
    line = Trimmed(line);
    return true;
}

bool TableFile::DropRestOfLine() {
    std::string_view piece;
    bool hadLineFeed = false;
    platform::ReadResult result;
    do {
        result = file.ReadLine(lineLimit, piece, hadLineFeed);
    } while (result == platform::ReadResult::line && !hadLineFeed && file.LineGoesOn());
    if (result == platform::ReadResult::error) ReportReadFailure();
    return result != platform::ReadResult::error;
}

std::string_view Fields::Next(std::string_view delimiters) {
    const auto isDelimiter = [delimiters](char c) {
        return std::any_of(delimiters.begin(), delimiters.end(), [c](char d) { return c == d; });
    };
    size_t from = position;
    while (from < text.size() && isDelimiter(text[from])) ++from;
    if (from >= text.size()) {
        position = text.size();
        return {};
    }
    size_t to = from;
    while (to < text.size() && !isDelimiter(text[to])) ++to;
    position = to + 1;
    return text.substr(from, to - from);
}

namespace {

// The number behind a comma that stands apart.
int ReadSecondNumber(Fields& fields, std::string_view& second) {
    second = fields.Next(" \t,");
    return second.empty() ? 0 : 1;
}

}  // namespace

int ReadNumberPair(Fields& fields, std::string_view& first, std::string_view& second) {
    first = second = {};
    const std::string_view field = fields.Next();
    if (field.empty()) return 0;
    if (field.find(',') == std::string_view::npos) {
        first = field;
        const std::string_view rest = fields.Rest();
        const auto mark = std::find_if(rest.begin(), rest.end(), IsPairMark);
        return mark != rest.end() && *mark == ',' ? ReadSecondNumber(fields, second) : 1;
    }
    if (field.back() == ',') {
        first = field.substr(0, field.size() - 1);
        return ReadSecondNumber(fields, second);
    }
    Fields halves(field);
    first = halves.Next(",");
    second = halves.Next(",");
    return 1;
}

bool FindCodeSection(TableFile& file, char letter) {
    const char header[] = {':', letter};
    std::string_view line;
    while (file.NextLine(line)) {
        if (platform::SameWithoutCase(line, std::string_view(header, sizeof header))) return true;
    }
    return false;
}

bool NextCodePair(TableFile& file, int32_t& from, int32_t& to, std::string_view& name) {
    std::string_view line;
    while (file.NextLine(line)) {
        if (line.empty() || line.front() == '*') continue;
        if (line.front() == ':') return false;
        Fields fields(line);
        const std::string_view first = fields.Next();
        const std::string_view second = fields.Next();
        if (second.empty()) continue;
        from = ParseInteger(first);
        to = ParseInteger(second);
        name = Trimmed(fields.Rest());
        return true;
    }
    return false;
}

}  // namespace vemrado
