// Error texts, media dialogs and the calling thread's window messages.

#define NOMINMAX
#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "framework/framework.h"
#include "platform/native.h"

namespace vemrado::platform {

void ErrorReason(int error, char* text, size_t capacity) {
    if (capacity == 0) return;
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    char reason[512];
    const DWORD length =
        FormatMessageA(flags, nullptr, static_cast<DWORD>(error), 0, reason, sizeof reason, nullptr);
    const auto isSpace = [](char character) { return static_cast<unsigned char>(character) <= ' '; };
    char* end = reason + length;
    while (end != reason && isSpace(end[-1])) --end;
    if (end == reason) {
        std::snprintf(text, capacity, "error %d", error);
        return;
    }
    std::replace_if(reason, end, isSpace, ' ');
    const size_t copied = std::min(static_cast<size_t>(end - reason), capacity - 1);
    std::copy_n(reason, copied, text);
    text[copied] = '\0';
}

// The calling thread's mode: the process's is everybody's.
CriticalErrorGuard::CriticalErrorGuard() {
    DWORD mode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &mode);
    previousMode = mode;
}
CriticalErrorGuard::~CriticalErrorGuard() {
    SetThreadErrorMode(previousMode, nullptr);
}

void PumpMessages() {
    bool quit = false;
    WPARAM exitCode = 0;
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            quit = true;
            exitCode = message.wParam;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    // The request to quit is meant for the host's own loop.
    if (quit) PostQuitMessage(static_cast<int>(exitCode));
    FrameworkPumpMessages();
}

}  // namespace vemrado::platform
