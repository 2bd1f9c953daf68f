#include "staged_output.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <signal.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>

#include "client/system.h"
#include "converter.h"

namespace vemrado::gdal {

StagedOutput::StagedOutput(const std::string& output) : target(CPLGetDirname(output.c_str())) {
    const std::string name = StagingFolderName(client::ProcessNumber());
    folder = CPLFormFilename(target.c_str(), name.c_str(), nullptr);
}

StagedOutput::~StagedOutput() {
    VSIRmdirRecursive(folder.c_str());
}

// Processes that were killed leave theirs. A folder with thousands of outputs is looked at once.
void StagedOutput::RemoveForsaken() const {
    static std::set<std::string> lookedAt;
    if (!lookedAt.insert(target).second) return;
    const CPLStringList names(VSIReadDir(target.c_str()));
    const std::string start = stagingFolderStart;
    for (int i = 0; i < names.Count(); ++i) {
        const std::string name = names[i];
        if (!name.starts_with(start)) continue;
        const int process = std::atoi(name.c_str() + start.size());
        const bool runs = process <= 0 || kill(process, 0) == 0 || errno != ESRCH;
        if (!runs) VSIRmdirRecursive(CPLFormFilename(target.c_str(), names[i], nullptr));
    }
}

bool StagedOutput::Make(std::string& reason) {
    RemoveForsaken();
    constexpr long everyone = 0777;
    if (VSIMkdir(folder.c_str(), everyone) == 0) return true;
    reason = std::strerror(errno);
    return false;
}

std::string StagedOutput::PathOf(const std::string& name) const {
    return CPLFormFilename(folder.c_str(), name.c_str(), nullptr);
}

bool StagedOutput::PutInPlace(std::string& reason) {
    const CPLStringList names(VSIReadDir(folder.c_str()));
    for (int i = 0; i < names.Count(); ++i) {
        if (EQUAL(names[i], ".") || EQUAL(names[i], "..")) continue;
        const std::string place = CPLFormFilename(target.c_str(), names[i], nullptr);
        if (!client::PutInPlace(PathOf(names[i]), place)) {
            reason = place + ": cannot be written: " + std::strerror(errno);
            return false;
        }
    }
    return true;
}

}  // namespace vemrado::gdal
