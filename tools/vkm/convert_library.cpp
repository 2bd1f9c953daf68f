#include "convert_library.h"

#include <dlfcn.h>

#include <string>

#include "failure.h"

namespace vemrado::tools {

decltype(&VkmConvert) LoadConverter() {
    constexpr const char* name = "vkm-convert.so";
    static void* const library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    void* const entry = library != nullptr ? dlsym(library, "VkmConvert") : nullptr;
    if (entry != nullptr) return reinterpret_cast<decltype(&VkmConvert)>(entry);
    const char* reason = dlerror();
    throw Failure(exitInternal, std::string("convert needs ") + name +
                                    ", which comes with the GDAL driver, and it cannot be loaded: " +
                                    (reason != nullptr ? reason : "no reason given"));
}

}  // namespace vemrado::tools
