#include "convert_library.h"

#include <dlfcn.h>

#include <string>

#include "failure.h"

namespace vemrado::tools {

namespace {

void* LoadEntry(const char* entryName) {
    constexpr const char* name = "vkm-convert.so";
    static void* const library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    void* const entry = library != nullptr ? dlsym(library, entryName) : nullptr;
    if (entry != nullptr) return entry;
    const char* reason = dlerror();
    throw Failure(exitInternal, std::string("convert needs ") + name +
                                    ", which comes with the GDAL driver (Debian: the package vemrado-gdal), "
                                    "and it cannot be loaded: " +
                                    (reason != nullptr ? reason : "no reason given"));
}

}  // namespace

decltype(&VkmConvert) LoadConverter() {
    return reinterpret_cast<decltype(&VkmConvert)>(LoadEntry("VkmConvert"));
}

decltype(&VkmVirtualFiles) LoadVirtualFiles() {
    return reinterpret_cast<decltype(&VkmVirtualFiles)>(LoadEntry("VkmVirtualFiles"));
}

decltype(&VkmWriteFeatures) LoadFeatureWriter() {
    return reinterpret_cast<decltype(&VkmWriteFeatures)>(LoadEntry("VkmWriteFeatures"));
}

}  // namespace vemrado::tools
