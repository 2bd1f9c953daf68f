#include "last_change.h"

#include <cpl_vsi.h>

#include <filesystem>

namespace vemrado::gdal {

namespace {

namespace fs = std::filesystem;

// The file on disk that a name leads to or into.
fs::path OnDisk(const std::string& name) {
    std::error_code none;
    fs::path path = name;
    while (path.has_relative_path() && !fs::is_regular_file(path, none)) path = path.parent_path();
    return path;
}

}  // namespace

int64_t LastChangeOf(const std::string& name) {
    VSIStatBufL found;
    const std::string file = name.starts_with("/vsi") ? name : OnDisk(name).string();
    if (VSIStatExL(file.c_str(), &found, VSI_STAT_EXISTS_FLAG | VSI_STAT_SIZE_FLAG) != 0) return 0;
    return static_cast<int64_t>(found.st_mtime);
}

}  // namespace vemrado::gdal
