// How failures leave the library: thrown as Failure inside, a status and an error object outside.

#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "vemrado/vkm.h"

struct vkm_error {
    vkm_status status = VKM_OK;
    std::string text;
    std::string file;
    uint64_t line = 0;
};

namespace vemrado::capi {

class Failure : public std::runtime_error {
  public:
    // The reason alone: the text names file and line before it.
    Failure(vkm_status failureStatus, const std::string& reason, std::string fileName = {},
            uint64_t line = 0);
    // A sentence that names its file itself.
    static Failure WithText(vkm_status status, std::string text, std::string fileName, uint64_t line = 0);

    const vkm_error& Error() const { return error; }

  private:
    explicit Failure(vkm_error complete) : std::runtime_error(complete.text), error(std::move(complete)) {}
    vkm_error error;
};

// Refuses a bad argument of the caller's.
inline void Require(bool condition, const char* sentence) {
    if (!condition) throw Failure(VKM_ERROR_ARGUMENT, sentence);
}

// Puts the exception in flight into *error where the caller wants one, and returns its status.
vkm_status ReportCurrent(vkm_error** error) noexcept;

// Runs a function of the interface that returns a status; nothing is thrown past it.
template <typename Function>
vkm_status Guarded(vkm_error** error, Function function) noexcept {
    try {
        return function();
    } catch (...) {
        return ReportCurrent(error);
    }
}

}  // namespace vemrado::capi
