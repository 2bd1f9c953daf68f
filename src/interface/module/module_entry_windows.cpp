// The module's entry on Windows: its place in the chain of the framework's extension libraries.

#include <windows.h>

#include <new>

#include "framework/framework.h"

namespace vemrado {
namespace {

AFX_EXTENSION_MODULE moduleRecord;

// The framework deletes it; the class of our own makes that go through the module's allocator.
class ModuleLibrary final : public CDynLinkLibrary {
  public:
    using CDynLinkLibrary::CDynLinkLibrary;
};

BOOL Attach(HINSTANCE instance) {
    if (AfxInitExtensionModule(&moduleRecord, instance) == 0) return FALSE;
    if (new (std::nothrow) ModuleLibrary(&moduleRecord) != nullptr) return TRUE;
    AfxTermExtensionModule(&moduleRecord, 0);
    return FALSE;
}

}  // namespace
}  // namespace vemrado

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) return vemrado::Attach(instance);
    if (reason == DLL_PROCESS_DETACH) AfxTermExtensionModule(&vemrado::moduleRecord, 0);
    return TRUE;
}
