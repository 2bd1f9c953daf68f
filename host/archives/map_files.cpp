#include "archives/map_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "archives/archive_files.h"
#include "client/system.h"

namespace vemrado::archives {

namespace {

namespace fs = std::filesystem;

bool EndsWith(std::string_view name, std::string_view end) {
    if (name.size() < end.size()) return false;
    name.remove_prefix(name.size() - end.size());
    return std::ranges::equal(
        name, end, [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

bool IsArchiveName(std::string_view name) {
    constexpr std::string_view ends[] = {".zip", ".tar", ".tar.gz", ".tgz"};
    return std::ranges::any_of(ends, [&](std::string_view end) { return EndsWith(name, end); });
}

// A file's name as the module takes it; narrow strings of the standard library are something else on Windows.
std::string NameOf(const fs::path& path) {
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

uint64_t SizeOf(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
}

template <typename Iterator>
std::vector<fs::path> FilesOf(Iterator entries, std::error_code& error) {
    std::vector<fs::path> files;
    for (const Iterator end; !error && entries != end; entries.increment(error)) {
        std::error_code none;
        if (entries->is_regular_file(none)) files.push_back(entries->path());
    }
    std::ranges::sort(files);
    return files;
}

void AddArchive(const std::string& archive, const std::string& placeBefore, std::vector<MapFile>& found) {
    const auto fail = [&](const std::string& problem) { found.push_back({archive, archive, 0, problem}); };
    try {
        const std::vector<ArchivedFile> files = FilesInArchive(archive);
        const size_t before = found.size();
        for (const ArchivedFile& file : files) {
            if (!IsMapName(file.name) && files.size() != 1) continue;
            found.push_back({archive + "/" + file.name, placeBefore + file.name, file.size, ""});
        }
        if (found.size() == before) fail("the archive holds no VKM file");
    } catch (const ArchiveError& error) {
        fail(error.what());
    } catch (const std::system_error& error) {
        fail(error.code().message());
    }
}

}  // namespace

bool IsMapName(const std::string& name) {
    return EndsWith(name, ".vkm") || EndsWith(name, ".vkm.gz");
}

std::vector<MapFile> MapsInFolder(const std::string& folder, bool recursive) {
    std::error_code error;
    constexpr auto some = fs::directory_options::skip_permission_denied;
    const fs::path root = client::NativePath(folder);
    const std::vector<fs::path> files =
        recursive ? FilesOf(fs::recursive_directory_iterator(root, some, error), error)
                  : FilesOf(fs::directory_iterator(root, some, error), error);
    if (error) return {{folder, folder, 0, error.message()}};
    std::vector<MapFile> found;
    for (const fs::path& file : files) {
        const std::string name = NameOf(file);
        const std::string place = NameOf(file.lexically_relative(root));
        if (IsMapName(name)) found.push_back({name, place, SizeOf(file), ""});
        if (IsArchiveName(name)) AddArchive(name, place + "/", found);
    }
    if (found.empty()) found.push_back({folder, folder, 0, "the folder holds no VKM file"});
    return found;
}

std::vector<MapFile> MapsInArchive(const std::string& archive) {
    std::vector<MapFile> found;
    AddArchive(archive, "", found);
    return found;
}

}  // namespace vemrado::archives
