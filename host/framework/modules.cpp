// The chain of extension modules.

#include "framework/framework.h"
#include "lock.h"

namespace {

// Around the chain.
standin::Lock chainLock;
CDynLinkLibrary* firstLibrary = nullptr;

void Unlink(const CDynLinkLibrary* library) {
    const standin::Holding holding(chainLock);
    for (CDynLinkLibrary** place = &firstLibrary; *place != nullptr; place = &(*place)->next) {
        if (*place == library) {
            *place = library->next;
            return;
        }
    }
}

}  // namespace

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE* record) : module(record) {
    {
        const standin::Holding holding(chainLock);
        next = firstLibrary;
        firstLibrary = this;
    }
    if (record != nullptr) record->library = this;
}

CDynLinkLibrary::~CDynLinkLibrary() {
    Unlink(this);
    if (module != nullptr && module->library == this) module->library = nullptr;
}

int AfxInitExtensionModule(AFX_EXTENSION_MODULE* record, void* moduleHandle) {
    if (record == nullptr) return 0;
    record->moduleHandle = moduleHandle;
    record->initialized = 1;
    return 1;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE* record, int terminateAll) {
    if (terminateAll != 0) {
        while (firstLibrary != nullptr) delete firstLibrary;
    }
    if (record == nullptr) return;
    delete record->library;
    record->initialized = 0;
}

int FrameworkModuleCount() {
    const standin::Holding holding(chainLock);
    int count = 0;
    for (const CDynLinkLibrary* library = firstLibrary; library != nullptr; library = library->next) ++count;
    return count;
}
