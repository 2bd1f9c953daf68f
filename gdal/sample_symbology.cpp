#include "sample_symbology.h"

#include <dlfcn.h>

#include "client/data_directory.h"
#include "client/system.h"

namespace vemrado::gdal {

std::string SampleSymbology() {
    // The file that this function was loaded from, and the folders above it: a plugin lies deeper than a
    // program.
    Dl_info here = {};
    if (dladdr(reinterpret_cast<const void*>(&SampleSymbology), &here) == 0 || here.dli_fname == nullptr)
        return {};
    // As the loader was given it, which may start in the current folder.
    std::string place = client::FollowLinks(here.dli_fname);
    constexpr int maximumDepth = 4;
    for (int depth = 0; depth < maximumDepth && !place.empty(); ++depth) {
        std::string found = client::FindSampleSymbology(place);
        if (!found.empty()) return found;
        const size_t separator = place.rfind('/');
        place.resize(separator == std::string::npos ? 0 : separator);
    }
    return {};
}

}  // namespace vemrado::gdal
