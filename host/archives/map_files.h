// The maps in a folder or an archive.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vemrado::archives {

struct MapFile {
    std::string name;     // by which the module opens it: sheets.zip/a.vkm
    std::string place;    // the same below the folder or archive
    uint64_t bytes = 0;   // 0: not known
    std::string problem;  // why it cannot be used, in the system's encoding; empty: none
};

// A folder gives its *.vkm and *.vkm.gz by name and what lies in its archives, with recursive also of the
// folders in it; an archive gives the same, and its only file whatever that is called. What cannot be used,
// or holds no map, stands there with its problem.
std::vector<MapFile> MapsInFolder(const std::string& folder, bool recursive);
std::vector<MapFile> MapsInArchive(const std::string& archive);

// Named *.vkm or *.vkm.gz, in letters of any case.
bool IsMapName(const std::string& name);

}  // namespace vemrado::archives
