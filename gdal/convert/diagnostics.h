// What GDAL reports during a conversion.

#pragma once

#include <cpl_error.h>

#include <functional>
#include <set>
#include <string>
#include <utility>

namespace vemrado::gdal {

// Takes GDAL's reports for as long as it lives: warnings go on, each once, and the first failure is kept.
class Diagnostics {
  public:
    explicit Diagnostics(std::function<void(const std::string&)> warning) : warn(std::move(warning)) {
        CPLPushErrorHandlerEx(OnError, this);
    }
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;
    ~Diagnostics() { CPLPopErrorHandler(); }

    // The first failure since the last call; empty: none.
    std::string TakeFailure() { return std::exchange(failure, {}); }
    const std::string& Failure() const { return failure; }
    // An output may complain of every single value.
    void WritingBegins() {
        if (warningsLeft < 0) warningsLeft = 10;
        writing = true;
    }
    void ReadingBegins() { writing = false; }
    void Warn(const std::string& sentence);

  private:
    static void CPL_STDCALL OnError(CPLErr severity, CPLErrorNum, const char* text);

    std::function<void(const std::string&)> warn;
    int warningsLeft = -1;  // of writing; negative: as many as come
    bool writing = false;
    std::set<std::string> told;
    std::string failure;
};

}  // namespace vemrado::gdal
