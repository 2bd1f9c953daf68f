// Module entry on Windows.

#include <windows.h>

#include "interface/module/module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return vemrado::AttachModule(instance) ? TRUE : FALSE;
        case DLL_PROCESS_DETACH:
            vemrado::DetachModule();
            return TRUE;
        default:
            return TRUE;  // threads come and go without notice
    }
}
