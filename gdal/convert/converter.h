// Conversion of VKM files to any format that GDAL writes. It lies in a library of its own, vkm-convert.so, so
// that the command line loads GDAL only when it converts.

#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "framework/framework.h"

namespace vemrado::gdal {

enum class OutputMode {
    create,  // a file of that name is replaced; tables of a database must not be there yet
    append,  // sheets are added to what is there
    update,  // the same, but sheets that are there and have changed are replaced, others left alone
};

// Output that is not a file.
inline constexpr const char* standardOutputName = "-";

struct ConvertRequest {
    std::vector<std::string> inputs;       // into one output
    std::string output;                    // its name's extension tells the format unless that is given
    std::string nameInFolder;              // not empty: output is a folder, and the output in it is called so
    std::string format;                    // an extension or the name of a GDAL driver; may be empty
    std::vector<std::string> layers;       // by name; empty: all
    std::vector<std::string> openOptions;  // of the driver, NAME=VALUE
    bool manySheets = false;               // features tell their sheet, by fields source and map_scale
    bool keepGoing = false;                // sheets that cannot be read are left out
    bool indexOnly = false;                // nothing but the outlines of the sheets
    OutputMode mode = OutputMode::create;
    bool prune = false;           // sheets of the output that are not among the inputs go
    std::string schema;           // of a PostgreSQL database; empty: its default
    std::string targetReference;  // coordinates are transformed to it; empty: they stay
    std::vector<double> box;      // four numbers: only features that touch it; empty: all
};

// Each parcel is counted with the first of its sheets.
struct ParcelCounts {
    uint64_t parcels = 0;
    uint64_t withoutNumber = 0;
    uint64_t freeEnds = 0;  // of boundaries
};

struct SheetReport {
    size_t input = 0;  // its number in the request
    bool made = false;
    bool complete = false;
    uint64_t lines = 0;
    uint64_t points = 0;
    uint64_t texts = 0;
    ParcelCounts parcels;
    double seconds = 0.0;
    std::string reason;  // why it was not made
};

// Called on the thread that converts, with UTF-8.
struct ConvertReports {
    std::function<bool()> goOn;  // false stops the conversion
    // So many inputs are done, and such a part of the next one.
    std::function<void(size_t, double)> progress;
    std::function<void(const std::string&)> warn;
};

enum class ConvertOutcome {
    complete,
    incomplete,   // made, but a file ended without its closing record
    partial,      // made, but without the sheets that could not be read
    inputFailed,  // nothing was made, as in the cases below
    outputFailed,
    diskFull,
    badRequest,
    stopped,
    closed,  // whoever reads standard output wanted no more of it
};

// Name of the folder beside an output in which a process makes it.
inline constexpr const char* stagingFolderStart = ".vkm-convert.";
inline std::string StagingFolderName(unsigned long process) {
    return stagingFolderStart + std::to_string(process);
}

struct ConvertResult {
    ConvertOutcome outcome = ConvertOutcome::complete;
    std::string problem;              // one sentence; empty when complete
    std::vector<SheetReport> sheets;  // one for each input
};

}  // namespace vemrado::gdal

// What the library exports.
extern "C" __attribute__((visibility("default"))) void VkmConvert(
    const vemrado::gdal::ConvertRequest& request, const vemrado::gdal::ConvertReports& reports,
    vemrado::gdal::ConvertResult& result);

// GDAL's virtual files as the module opens files.
extern "C" __attribute__((visibility("default"))) const FrameworkFileProvider* VkmVirtualFiles();
