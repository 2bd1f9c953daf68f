#include "client/standard_input.h"

#include <cstring>

#include "client/system.h"
#include "framework/framework.h"

namespace vemrado::client {
namespace {

bool offered = false;

void* OpenOffered(void*, const char* path) {
    if (!offered || std::strcmp(path, standardInputLabel) != 0) return nullptr;
    offered = false;
    return &offered;
}

int64_t Read(void*, void* destination, size_t count) {
    return ReadStandardInput(destination, count);
}

int64_t UnknownLength(void*) {
    return 0;
}

void LeaveOpen(void*) {}

}  // namespace

const char* ShownName(const char* fileName) {
    return std::strcmp(fileName, standardInputName) == 0 ? standardInputLabel : fileName;
}

void OfferStandardInput() {
    static const FrameworkFileProvider provider = {nullptr, OpenOffered, Read, UnknownLength, LeaveOpen};
    FrameworkSetFileProvider(&provider);
    offered = true;
}

}  // namespace vemrado::client
