#include "virtual_files.h"

#include <cpl_error.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <memory>
#include <string>

namespace vemrado::gdal {

namespace {

struct VirtualFile {
    VSILFILE* stream;
    bool failed = false;
};

void* OpenFile(void*, const char* path) {
    std::string name = path;
    std::replace(name.begin(), name.end(), '\\', '/');
    VSILFILE* stream = VSIFOpenL(name.c_str(), "rb");
    return stream != nullptr ? new VirtualFile{stream} : nullptr;
}

// Some virtual files report damage to GDAL's error handler and then look as if they ended there.
int64_t ReadFile(void* opened, void* destination, size_t count) {
    VirtualFile& file = *static_cast<VirtualFile*>(opened);
    if (file.failed) return -1;
    const auto errorsBefore = CPLGetErrorCounter();
    const size_t got = VSIFReadL(destination, 1, count, file.stream);
    if (got == count) return static_cast<int64_t>(got);
    const bool reported = CPLGetErrorCounter() != errorsBefore && CPLGetLastErrorType() >= CE_Failure;
    file.failed = reported || !VSIFEofL(file.stream);
    return got == 0 && file.failed ? -1 : static_cast<int64_t>(got);
}

int64_t LengthUnknown(void*) {
    return 0;
}

void CloseFile(void* opened) {
    const std::unique_ptr<VirtualFile> file(static_cast<VirtualFile*>(opened));
    VSIFCloseL(file->stream);
}

}  // namespace

const FrameworkFileProvider virtualFiles = {nullptr, OpenFile, ReadFile, LengthUnknown, CloseFile};

}  // namespace vemrado::gdal
