#include "interface/module/module.h"

#include <new>

#include "framework/framework.h"
#include "messages/message_table.h"
#include "support/host_calls.h"
#include "support/memory_pool.h"
#include "zrv320/zrv320.h"

#if defined(__GLIBCXX__)
namespace __gnu_cxx {
// Of the C++ runtime: gives back the memory that it holds in reserve for exceptions.
void __freeres() noexcept;
}  // namespace __gnu_cxx
#endif

namespace vemrado {

namespace {

// Deleted by the framework, through this class's own deallocation function.
class ModuleLibrary final : public CDynLinkLibrary {
  public:
    using CDynLinkLibrary::CDynLinkLibrary;

    static void* operator new(size_t size, const std::nothrow_t&) noexcept {
        return AllocateMemory(size, alignof(ModuleLibrary));
    }
    static void operator delete(void* block) { FreeMemory(block); }
    static void operator delete(void* block, const std::nothrow_t&) { FreeMemory(block); }
};

AFX_EXTENSION_MODULE extensionModule;
bool attached = false;

// The host's drawing library is loaded before this module, so its language is known while the module loads.
[[maybe_unused]] const bool languageSelected = (SelectLanguage(CallHost(GetZrvCountry)), true);

}  // namespace

bool AttachModule(void* moduleHandle) {
    attached = AfxInitExtensionModule(&extensionModule, moduleHandle) != 0;
    if (attached) new (std::nothrow) ModuleLibrary(&extensionModule);
    return attached;
}

void DetachModule() {
    if (attached) AfxTermExtensionModule(&extensionModule, 0);
    attached = false;
#if defined(__GLIBCXX__)
    // The runtime is the module's own copy and ends with it.
    __gnu_cxx::__freeres();
#endif
}

bool ModuleAttached() {
    return attached;
}

}  // namespace vemrado
