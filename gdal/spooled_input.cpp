#include "spooled_input.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>

#include <memory>
#include <vector>

namespace vemrado::gdal {

namespace {

using File = std::unique_ptr<VSILFILE, decltype(&VSIFCloseL)>;

bool Copy(VSILFILE* from, VSILFILE* to) {
    std::vector<char> block(1 << 18);
    while (const size_t got = VSIFReadL(block.data(), 1, block.size(), from)) {
        if (VSIFWriteL(block.data(), 1, got, to) != got) return false;
    }
    return true;
}

}  // namespace

SpooledInput::SpooledInput() : path(CPLGenerateTempFilename("vkm")) {
    const File input(VSIFOpenL(standardInputFile, "rb"), VSIFCloseL);
    File spool(VSIFOpenL(path.c_str(), "wb"), VSIFCloseL);
    const bool copied = input && spool && Copy(input.get(), spool.get());
    const bool closed = spool && VSIFCloseL(spool.release()) == 0;
    if (copied && closed) return;
    CPLError(CE_Failure, CPLE_FileIO, "standard input cannot be copied to %s", path.c_str());
    VSIUnlink(path.c_str());
    path.clear();
}

SpooledInput::~SpooledInput() {
    if (!path.empty()) VSIUnlink(path.c_str());
}

}  // namespace vemrado::gdal
