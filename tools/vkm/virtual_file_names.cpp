#include "virtual_file_names.h"

#include <string_view>

#if VEMRADO_CONVERTER
#include "convert_library.h"
#include "failure.h"
#endif

namespace vemrado::tools {

#if VEMRADO_CONVERTER

const FrameworkFileProvider& VirtualFileNames() {
    // The others of GDAL's provider belong to the file that it opened.
    static const FrameworkFileProvider provider = {
        nullptr,
        [](void*, const char* path) -> void* {
            if (!std::string_view(path).starts_with("/vsi")) return nullptr;
            try {
                const FrameworkFileProvider& files = *LoadVirtualFiles()();
                return files.open(files.context, path);
            } catch (const Failure&) {
                return nullptr;  // the disk says that there is no such file
            }
        },
        [](void* file, void* destination, size_t count) {
            return (*LoadVirtualFiles())()->read(file, destination, count);
        },
        [](void* file) { return (*LoadVirtualFiles())()->length(file); },
        [](void* file) { (*LoadVirtualFiles())()->close(file); }};
    return provider;
}

#else

const FrameworkFileProvider& VirtualFileNames() {
    static const FrameworkFileProvider none = {nullptr, [](void*, const char*) -> void* { return nullptr; },
                                               nullptr, nullptr, nullptr};
    return none;
}

#endif

}  // namespace vemrado::tools
