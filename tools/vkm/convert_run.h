// Conversion of maps to any format that GDAL writes, through the driver that GIS programs use.

#pragma once

#include <string>
#include <vector>

#include "common_options.h"
#include "inputs.h"

namespace vemrado::tools {

class Environment;

struct ConvertOptions {
    InputOptions inputs;
    std::string output;
    std::string format;
    std::vector<std::string> layers;
    std::string reference;
    std::string targetReference;
    std::string angleUnit;
    std::string schema;
    std::string report;
    std::vector<double> box;
    std::vector<std::string> openOptions;
    bool parcels = false;
    bool keepGoing = false;
    bool append = false;
    bool update = false;
    bool prune = false;
    bool index = false;  // of the command that makes nothing but an index
    int jobs = 1;
    int axisOrientation = 128;
    EncodingChoice encoding;
};

// Converts what the options name and gives the exit code. Throws Failure.
int RunConversion(const ConvertOptions& options, Environment& environment);

}  // namespace vemrado::tools
