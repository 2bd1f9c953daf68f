#include "inputs.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <span>
#include <string_view>
#include <system_error>

#include "archives/archive_files.h"
#include "client/file_providers.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "failure.h"
#include "virtual_file_names.h"

namespace vemrado::tools {
namespace {

namespace fs = std::filesystem;

bool EndsWith(std::string_view name, std::string_view end) {
    if (name.size() < end.size()) return false;
    name.remove_prefix(name.size() - end.size());
    return std::ranges::equal(
        name, end, [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

bool IsMapName(std::string_view name) {
    return EndsWith(name, ".vkm") || EndsWith(name, ".vkm.gz");
}

bool IsArchiveName(std::string_view name) {
    constexpr std::string_view ends[] = {".zip", ".tar", ".tar.gz", ".tgz"};
    return std::ranges::any_of(ends, [&](std::string_view end) { return EndsWith(name, end); });
}

std::string Shown(const std::string& name) {
    return client::SystemTextToUtf8(name);
}

uint64_t SizeOf(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
}

class Finder {
  public:
    explicit Finder(bool recursive) : intoFolders(recursive) {}

    void AddNamed(const std::string& name, bool fromMany) {
        if (name == client::standardInputName) {
            if (std::exchange(standardInputTaken, true))
                throw Failure(exitUsage, "standard input can be read only once");
            found.push_back({name, "", 0, "", fromMany});
        } else if (client::KindOfFile(name) == client::FileKind::directory) {
            AddFolder(name);
        } else if (!IsMapName(name) && archives::IsArchive(name)) {
            AddArchive(name, "");
        } else {
            found.push_back({name, fs::path(name).filename().string(), SizeOf(name), "", fromMany});
        }
    }

    // The names come relative to the process's folder, as those of the command line do.
    void AddList(const std::string& list) {
        if (list == client::standardInputName) {
            standardInputTaken = true;
            AddLines(std::cin);
            return;
        }
        std::ifstream file(list);
        if (!file) throw Failure(exitInput, Shown(list) + ": the list cannot be opened");
        AddLines(file);
    }

    std::vector<Input> found;

  private:
    void AddLines(std::istream& lines) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        std::string line;
        for (bool first = true; std::getline(lines, line); first = false) {
            if (first && line.starts_with(byteOrderMark)) line.erase(0, byteOrderMark.size());
            if (line.ends_with('\r')) line.pop_back();
            if (!line.empty()) AddNamed(line, true);
        }
    }

    void AddProblem(const std::string& name, const std::string& problem) {
        found.push_back({name, name, 0, Shown(name) + ": " + Shown(problem), true});
    }

    template <typename Iterator>
    static std::vector<fs::path> FilesOf(Iterator entries, std::error_code& error) {
        std::vector<fs::path> files;
        for (const Iterator end; !error && entries != end; entries.increment(error)) {
            std::error_code none;
            if (entries->is_regular_file(none)) files.push_back(entries->path());
        }
        std::ranges::sort(files);
        return files;
    }

    void AddFolder(const std::string& folder) {
        std::error_code error;
        constexpr auto some = fs::directory_options::skip_permission_denied;
        const std::vector<fs::path> files =
            intoFolders ? FilesOf(fs::recursive_directory_iterator(folder, some, error), error)
                        : FilesOf(fs::directory_iterator(folder, some, error), error);
        if (error) return AddProblem(folder, error.message());
        const size_t before = found.size();
        for (const fs::path& file : files) {
            const std::string name = file.generic_string();
            const std::string place = file.lexically_relative(folder).generic_string();
            if (IsMapName(name)) found.push_back({name, place, SizeOf(file), "", true});
            if (IsArchiveName(name)) AddArchive(name, place + "/");
        }
        if (found.size() == before) AddProblem(folder, "the folder holds no VKM file");
    }

    void AddArchive(const std::string& archive, const std::string& placeBefore) {
        try {
            const std::vector<archives::ArchivedFile> files = archives::FilesInArchive(archive);
            const size_t before = found.size();
            for (const archives::ArchivedFile& file : files) {
                if (!IsMapName(file.name) && files.size() != 1) continue;
                found.push_back({archive + "/" + file.name, placeBefore + file.name, file.size, "", true});
            }
            if (found.size() == before) AddProblem(archive, "the archive holds no VKM file");
        } catch (const archives::ArchiveError& error) {
            AddProblem(archive, error.what());
        } catch (const std::system_error& error) {
            AddProblem(archive, error.code().message());
        }
    }

    bool intoFolders;
    bool standardInputTaken = false;
};

}  // namespace

void AddInputOptions(CLI::App& command, InputOptions& options) {
    command
        .add_option("FILE", options.names,
                    "VKM files, folders and zip or tar archives of them; - is standard input")
        ->type_name("");
    command.add_flag("-r,--recursive", options.recursive, "Folders with all the folders in them");
    command
        .add_option("--files-from", options.list,
                    "File with the name of an input on every line; - is standard input")
        ->type_name("LIST");
    command.parse_complete_callback([&options] {
        if (options.names.empty() && options.list.empty()) throw CLI::RequiredError("FILE or --files-from");
    });
}

std::vector<Input> FindInputs(const InputOptions& options) {
    Finder finder(options.recursive);
    if (!options.list.empty()) finder.AddList(options.list);
    for (const std::string& name : options.names) finder.AddNamed(name, false);
    if (finder.found.empty()) throw Failure(exitInput, Shown(options.list) + ": the list names no file");
    return std::move(finder.found);
}

std::string FindOneInput(const std::string& name) {
    if (name == client::standardInputName || !archives::IsArchive(name)) return name;
    Finder finder(false);
    finder.AddNamed(name, false);
    const Input& first = finder.found.front();
    if (!first.problem.empty()) throw Failure(exitInput, first.problem);
    if (finder.found.size() > 1) {
        throw Failure(exitUsage, Shown(name) + ": holds " + std::to_string(finder.found.size()) +
                                     " maps; name one, such as " + Shown(first.name));
    }
    return first.name;
}

void PrepareInputFiles() {
    client::AddFileProvider(archives::ArchiveFiles());
    client::AddFileProvider(VirtualFileNames());
}

}  // namespace vemrado::tools
