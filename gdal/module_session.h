// A stay in the module: what the calling thread has in place of the process's services meanwhile.

#pragma once

#include <cpl_error.h>

#include <memory>
#include <string>
#include <vector>

#include "framework/framework.h"

namespace vemrado::gdal {

// For its length, and on the thread that made it, the module opens its files through GDAL's virtual files;
// its message boxes, and what GDAL reports below it, are kept and handed to GDAL's error handler at the end,
// so that no handler of the host runs inside the module. Other threads have sessions of their own at the same
// time.
class ModuleSession {
  public:
    ModuleSession();
    ModuleSession(const ModuleSession&) = delete;
    ModuleSession& operator=(const ModuleSession&) = delete;
    ~ModuleSession();

    // Keeps a report for the end of the session.
    void Report(CPLErr severity, CPLErrorNum number, std::string text);

    // Makes the last report so severe; false when there was none.
    bool RaiseLast(CPLErr severity);

  private:
    struct Message {
        CPLErr severity;
        CPLErrorNum number;
        std::string text;
    };

    static int OnBox(void* session, const char* text, unsigned int style);
    static void CPL_STDCALL OnError(CPLErr severity, CPLErrorNum number, const char* text);

    std::vector<Message> messages;
    FrameworkThreadServices services;
    const FrameworkThreadServices* servicesBefore;
};

}  // namespace vemrado::gdal
