// The command line of vkm-generate.

#pragma once

#include <cstdint>
#include <string>

#include "record_writer.h"

namespace generate {

struct Options {
    uint64_t seed = 1;
    int64_t sheets = 0;  // sheets to write, or
    uint64_t size = 0;   // the least number of bytes to write; one of the two is not 0
    int scale = 1000;
    bool relative = false;
    bool plainLines = false;
    RecordForm form = RecordForm::plain;
    unsigned threads = 0;  // 0: as many as the machine has
    std::string output;    // empty: standard output
    bool help = false;
};

// False when the arguments cannot be used; error says why.
bool ParseOptions(int count, const char* const* arguments, Options& options, std::string& error);

extern const char* const usageText;

}  // namespace generate
