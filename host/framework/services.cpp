// What a host can put in place of the framework's services: message boxes, message pump, files, data
// directory.

#include <cstdio>
#include <string>
#include <utility>

#include "framework/framework.h"
#include "windows1250.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

FrameworkMessageBoxHandler boxHandler = nullptr;
void* boxContext = nullptr;
FrameworkPumpHook pumpHook = nullptr;
void* pumpContext = nullptr;
FrameworkFileProvider fileProvider = {};
bool hasFileProvider = false;
std::string dataDirectory;
bool hasDataDirectory = false;

constinit thread_local const FrameworkThreadServices* threadServices = nullptr;

// The box of a process without a handler. Returns the button's number.
int ShowBox(const char* text, unsigned int style) {
#if defined(_WIN32)
    return MessageBoxA(nullptr, text, "Vemrado", style);
#else
    static_cast<void>(style);
    constexpr int buttonOk = 1;
    std::fprintf(stderr, "%s\n", windows1250::ToUtf8(text).c_str());
    return buttonOk;
#endif
}

}  // namespace

int AfxMessageBox(const char* text, unsigned int style, unsigned int) {
    if (text == nullptr) text = "";
    if (threadServices != nullptr && threadServices->messageBoxHandler != nullptr)
        return threadServices->messageBoxHandler(threadServices->messageBoxContext, text, style);
    return boxHandler != nullptr ? boxHandler(boxContext, text, style) : ShowBox(text, style);
}

void FrameworkSetMessageBoxHandler(FrameworkMessageBoxHandler handler, void* context) {
    boxHandler = handler;
    boxContext = context;
}

void FrameworkSetPumpHook(FrameworkPumpHook hook, void* context) {
    pumpHook = hook;
    pumpContext = context;
}

void FrameworkPumpMessages() {
    if (pumpHook != nullptr) pumpHook(pumpContext);
}

void FrameworkSetFileProvider(const FrameworkFileProvider* provider) {
    hasFileProvider = provider != nullptr;
    fileProvider = hasFileProvider ? *provider : FrameworkFileProvider{};
}

const FrameworkFileProvider* FrameworkGetFileProvider() {
    if (threadServices != nullptr && threadServices->fileProvider != nullptr)
        return threadServices->fileProvider;
    return hasFileProvider ? &fileProvider : nullptr;
}

void FrameworkSetDataDirectory(const char* directory) {
    hasDataDirectory = directory != nullptr;
    dataDirectory = hasDataDirectory ? directory : "";
}

const char* FrameworkGetDataDirectory() {
    if (threadServices != nullptr && threadServices->dataDirectory != nullptr)
        return threadServices->dataDirectory;
    return hasDataDirectory ? dataDirectory.c_str() : nullptr;
}

const FrameworkThreadServices* FrameworkSetThreadServices(const FrameworkThreadServices* services) {
    return std::exchange(threadServices, services);
}
