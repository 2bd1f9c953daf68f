// The maps that a command line names: files, folders of them, archives, lists, standard input.

#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace vemrado::tools {

class Environment;
class Program;

struct InputOptions {
    std::vector<std::string> names;
    std::string list;  // file with a name a line; "-": standard input; empty: none
    bool recursive = false;
};

struct Input {
    std::string name;    // by which the module opens it, as people see it: sheets.zip/a.vkm
    std::string place;   // the same below the folder or archive that was named: what outputs are called after
    uint64_t bytes = 0;  // 0: not known
    std::string problem;    // UTF-8; why it cannot be read, such as an archive that is damaged; empty: none
    bool fromMany = false;  // found in a folder, an archive or a list
};

// FILE..., --recursive and --files-from.
void AddInputOptions(CLI::App& command, InputOptions& options);

// The maps in the order in which they were named, those of a folder by name. A folder gives its *.vkm and
// *.vkm.gz and what lies in its archives; an archive gives the same, and its only file whatever that is
// called. Throws Failure when a list cannot be read or names nothing, or standard input is named twice.
std::vector<Input> FindInputs(const InputOptions& options);

// The one map of a command that takes only one: a file, standard input, or an archive that holds a single
// map.
std::string FindOneInput(const std::string& name);

// Lets the module open files in archives by the names above, and GDAL's virtual files.
void PrepareInputFiles();

}  // namespace vemrado::tools
