// The caller's options, checked and copied.

#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "client/text_encoding.h"
#include "map/placement.h"
#include "vemrado/vkm.h"

namespace vemrado::capi {

struct Options {
    client::Encoding encoding = client::Encoding::windows1250;
    int axisOrientation = 128;
    bool withSymbology = true;
    std::string dataDirectory;    // that holds VKMSym
    std::string crs;              // empty: none
    std::vector<int32_t> layers;  // empty: all
    bool splitByCode = true;
    int32_t parcelLayer = 1;
    int32_t numberLayer = 2;
    uint32_t batchRows = 65536;
    map::AngleUnit angleUnit = map::AngleUnit::gon;
    vkm_on_warning onWarning = nullptr;
    vkm_on_progress onProgress = nullptr;
    void* callbackContext = nullptr;

    bool Wants(int layer) const { return layers.empty() || std::ranges::find(layers, layer) != layers.end(); }
};

// Null gives the defaults. Throws Failure for a value that makes no sense.
Options CopyOptions(const vkm_options* options);

// Whether the first member of a structure of the caller's is a size that such a structure can have.
inline bool SaysSize(size_t size) {
    return size >= sizeof(size_t) && size % alignof(size_t) == 0;
}

// Tell the caller's functions, where there are any. Throws Failure when the caller stops what it is told of.
void TellWarning(const Options& options, const std::string& reason, const std::string& file,
                 uint64_t line = 0, vkm_status status = VKM_OK);
void TellProgress(const Options& options, double part, const std::string& file);

// The start of a structure of the caller's that says its own size first, of which this library knows more or
// fewer members: what the caller does not have is as in the defaults.
template <typename Structure>
Structure KnownPart(const Structure& callers, Structure defaults) {
    const size_t size = callers.size < sizeof(Structure) ? callers.size : sizeof(Structure);
    std::copy_n(reinterpret_cast<const unsigned char*>(&callers), size,
                reinterpret_cast<unsigned char*>(&defaults));
    return defaults;
}

// Fills in a structure of the caller's as far as its size goes; the size stays.
template <typename Structure>
void FillIn(Structure* callers, Structure values) {
    values.size = callers->size;
    const size_t size = callers->size < sizeof(Structure) ? callers->size : sizeof(Structure);
    std::copy_n(reinterpret_cast<const unsigned char*>(&values), size,
                reinterpret_cast<unsigned char*>(callers));
}

}  // namespace vemrado::capi
