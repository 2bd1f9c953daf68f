// While the module runs for a reader, its services on this thread are the reader's: message boxes are kept,
// files come from the source, and no window is shown.

#pragma once

#include <exception>
#include <string>
#include <vector>

#include "framework/framework.h"
#include "source.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::capi {

// What the calls of one reader leave behind.
struct CallState {
    std::vector<std::string> boxes;  // texts in UTF-8, not told yet
    std::exception_ptr failure;      // of the source, which must not pass through the module
    ReadProgress progress;           // of the map; it outlives the file that the module has open
};

class ModuleCalls {
  public:
    // Both outlive it.
    ModuleCalls(Source& source, CallState& state);
    ModuleCalls(const ModuleCalls&) = delete;
    ModuleCalls& operator=(const ModuleCalls&) = delete;
    ~ModuleCalls();

  private:
    static int OnBox(void* self, const char* text, unsigned int style);
    static void* OpenFile(void* self, const char* path);
    static int OnProgress(void* self, int maximum, int position);

    Source& source;
    CallState& state;
    FrameworkFileProvider provider;
    FrameworkThreadServices services;
    InfoThreadProgress progress;
    const FrameworkThreadServices* servicesBefore;
    const InfoThreadProgress* progressBefore;
};

}  // namespace vemrado::capi
