// Module entry on POSIX systems. A shared object cannot refuse its load; one that the framework refused stays
// loaded and makes no importers.

#include "interface/module/module.h"

namespace {

// Constructed after the pools (their initialisation has a priority) and destroyed before them.
class ModuleEntry {
  public:
    ModuleEntry() { vemrado::AttachModule(nullptr); }
    ~ModuleEntry() { vemrado::DetachModule(); }
    ModuleEntry(const ModuleEntry&) = delete;
    ModuleEntry& operator=(const ModuleEntry&) = delete;
};

const ModuleEntry moduleEntry;

}  // namespace
