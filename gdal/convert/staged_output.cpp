#include "staged_output.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <cerrno>
#include <cstring>

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

bool StagedOutput::Make(std::string& reason) {
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
