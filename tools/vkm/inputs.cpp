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
#include "archives/map_files.h"
#include "client/file_providers.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "failure.h"
#include "virtual_file_names.h"

namespace vemrado::tools {
namespace {

namespace fs = std::filesystem;

std::string Shown(const std::string& name) {
    return client::SystemTextToUtf8(name);
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

class Finder {
  public:
    explicit Finder(bool recursive) : intoFolders(recursive) {}

    void AddNamed(const std::string& name, bool fromMany) {
        if (name == client::standardInputName) {
            if (std::exchange(standardInputTaken, true))
                throw Failure(exitUsage, "standard input can be read only once");
            found.push_back({name, "", 0, "", fromMany});
        } else if (client::KindOfFile(name) == client::FileKind::directory) {
            AddFound(archives::MapsInFolder(name, intoFolders));
        } else if (!archives::IsMapName(name) && archives::IsArchive(name)) {
            AddFound(archives::MapsInArchive(name));
        } else {
            found.push_back({name, NameOf(client::NativePath(name).filename()),
                             SizeOf(client::NativePath(name)), "", fromMany});
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

    void AddFound(const std::vector<archives::MapFile>& files) {
        for (const archives::MapFile& file : files) {
            const std::string problem = file.problem.empty() ? "" : Shown(file.name + ": " + file.problem);
            found.push_back({file.name, file.place, file.bytes, problem, true});
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
    if (finder.found.empty()) {
        const bool isPipe = options.list == client::standardInputName;
        throw Failure(exitInput,
                      (isPipe ? "standard input" : Shown(options.list)) + ": the list names no file");
    }
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
