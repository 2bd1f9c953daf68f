#include "sheet_header.h"

#include <cpl_vsi.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view blanks = " \t\r\n";

// A line without the blanks around it, taken off the text.
std::string_view NextLine(std::string_view& text) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    line.remove_prefix(first);
    return line.substr(0, line.find_last_not_of(blanks) + 1);
}

std::string_view FirstField(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_first_of(blanks));
}

// The file on disk that a name leads to or into.
fs::path OnDisk(const std::string& name) {
    std::error_code none;
    fs::path path = name;
    while (path.has_relative_path() && !fs::is_regular_file(path, none)) path = path.parent_path();
    return path;
}

}  // namespace

SheetHeader ReadSheetHeader(const std::string& file, client::Encoding encoding) {
    constexpr size_t longestHeader = 1 << 14;
    const std::string start = FileReading(file).Start(longestHeader);
    SheetHeader header;
    std::string comments;
    for (std::string_view rest = start; !rest.empty();) {
        const std::string_view line = NextLine(rest);
        if (line.empty()) continue;
        const std::string_view mark = line.substr(0, 2);
        if (mark == "&D") {
            header.date = FirstField(line.substr(2));
        } else if (mark == "&*") {
            comments += comments.empty() ? "" : "\n";
            comments += line.substr(std::min(line.find_first_not_of(blanks, 2), line.size()));
        } else if (mark != "&V" && mark != "&R") {
            break;
        }
    }
    header.title = client::TextDecoder(encoding).Decode(comments);
    return header;
}

int64_t LastChangeOf(const std::string& name) {
    VSIStatBufL found;
    const std::string file = name.starts_with("/vsi") ? name : OnDisk(name).string();
    if (VSIStatExL(file.c_str(), &found, VSI_STAT_EXISTS_FLAG | VSI_STAT_SIZE_FLAG) != 0) return 0;
    return static_cast<int64_t>(found.st_mtime);
}

}  // namespace vemrado::gdal
