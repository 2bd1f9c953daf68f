// Conversion of VKM files to any format that GDAL writes. It lies in a library of its own, vkm-convert.so, so
// that the command line loads GDAL only when it converts.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/framework.h"

namespace vemrado::gdal {

struct ConvertRequest {
    std::vector<std::string> inputs;       // into one output
    std::string output;                    // its name's extension tells the format unless that is given
    bool outputIsFolder = false;           // the output is named after the first input then
    std::string format;                    // an extension or the name of a GDAL driver; may be empty
    std::vector<std::string> layers;       // by name; empty: all
    std::vector<std::string> openOptions;  // of the driver, NAME=VALUE
};

// Called on the thread that converts, with UTF-8.
struct ConvertReports {
    std::function<bool(double)> progress;  // gets the share that is done, 0 to 1; false stops the conversion
    std::function<void(const std::string&)> warn;
};

enum class ConvertOutcome {
    complete,
    incomplete,   // made, but a file ended without its closing record
    inputFailed,  // nothing was made, as in the cases below
    outputFailed,
    badRequest,
    stopped,
};

// Name of the folder beside an output in which a process makes it.
inline std::string StagingFolderName(unsigned long process) {
    return ".vkm-convert." + std::to_string(process);
}

struct ConvertResult {
    ConvertOutcome outcome = ConvertOutcome::complete;
    std::string problem;  // one sentence; empty when complete
};

}  // namespace vemrado::gdal

// What the library exports.
extern "C" __attribute__((visibility("default"))) void VkmConvert(
    const vemrado::gdal::ConvertRequest& request, const vemrado::gdal::ConvertReports& reports,
    vemrado::gdal::ConvertResult& result);

// GDAL's virtual files as the module opens files.
extern "C" __attribute__((visibility("default"))) const FrameworkFileProvider* VkmVirtualFiles();
