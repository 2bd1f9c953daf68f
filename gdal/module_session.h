// A stay in the module. GIS programs open one file several times and read from several threads at once, while
// the module serves one thread at a time: every call of it stands inside a session.

#pragma once

#include <cpl_error.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "client/message_boxes.h"

namespace vemrado::gdal {

// Holds the one lock of the process around the module. For its length the module opens its files through
// GDAL's virtual files and finds its symbology in the given directory (empty: where the registry says); its
// message boxes, and what GDAL reports below it, are kept and handed to GDAL's error handler once the lock is
// free, so that no handler of the host runs under it.
class ModuleSession {
  public:
    explicit ModuleSession(const std::string& dataDirectory = {});
    ModuleSession(const ModuleSession&) = delete;
    ModuleSession& operator=(const ModuleSession&) = delete;
    ~ModuleSession();

    // Keeps a report for the end of the session.
    void Report(CPLErr severity, CPLErrorNum number, std::string text);

    // Makes the last report a failure; false when there was none.
    bool FailByLast();

  private:
    struct Message {
        CPLErr severity;
        CPLErrorNum number;
        std::string text;
    };

    static void CPL_STDCALL OnError(CPLErr severity, CPLErrorNum number, const char* text);

    std::unique_lock<std::mutex> lock;
    std::vector<Message> messages;
    std::optional<client::MessageBoxes> boxes;
};

}  // namespace vemrado::gdal
