// The two forms in which vkm info tells what is in a file.

#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "file_summary.h"

namespace vemrado::tools {

struct FileReport {
    std::string file;   // UTF-8
    std::string error;  // UTF-8; empty unless the file could not be used or was not read to its end
    bool opened = false;
    bool complete = false;
    double scale = 0.0;
    bool relative = false;
    int linesRead = 0;
    FileSummary summary;
};

// For people: a heading, the file's properties and tables by layer.
std::string ReportText(const FileReport& report);

// For programs: the object described in docs/command-line.md.
nlohmann::ordered_json ReportJson(const FileReport& report);

}  // namespace vemrado::tools
