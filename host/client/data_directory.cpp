#include "client/data_directory.h"

#include <filesystem>

#include "client/system.h"
#include "framework/framework.h"

namespace vemrado::client {
namespace {

std::string ParentOf(const std::string& path) {
    const size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? std::string() : path.substr(0, separator);
}

bool HoldsSymbology(const std::string& directory) {
    return KindOfFile(directory + "/VKMSym") == FileKind::directory;
}

}  // namespace

void UseDataDirectory(const std::string& directory) {
    FrameworkSetDataDirectory(directory.empty() ? nullptr : directory.c_str());
}

std::string DataDirectoryOf(const std::string& directory) {
    const std::filesystem::path path =
        std::filesystem::path(directory + "/").lexically_normal().parent_path();
    std::string name = path.filename().string();
    for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (name != "vkmsym") return directory;
    return path.has_parent_path() ? path.parent_path().string() : ".";
}

std::string FindSampleSymbology(const std::string& programPath) {
    std::string folder = ParentOf(programPath);
    if (folder.empty()) return {};
    const std::string installed = ParentOf(folder) + "/share/vemrado/symbology";
    if (HoldsSymbology(installed)) return installed;

    // A program of the build tree lies in build/PRESET/bin, a test's or a plugin's folder one deeper.
    constexpr int maximumDepth = 4;
    for (int depth = 0; depth < maximumDepth && !folder.empty(); ++depth) {
        folder = ParentOf(folder);
        const std::string sources = folder + "/data/symbology";
        if (HoldsSymbology(sources)) return sources;
    }
    return {};
}

}  // namespace vemrado::client
