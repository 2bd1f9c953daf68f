#if defined(_WIN32)

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <string>

#include "zrvDX320/console.h"

namespace {

// The system calls the handler on a thread of its own.
std::atomic<int> interrupts = 0;

BOOL WINAPI OnControlEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    ++interrupts;
    return TRUE;
}

}  // namespace

int TerminalColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) == FALSE) return 0;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

void WriteTerminal(const char* text) {
    std::fflush(stderr);
    const int length = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    if (length <= 1) return;
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text, -1, wide.data(), length);
    DWORD written = 0;
    WriteConsoleW(GetStdHandle(STD_ERROR_HANDLE), wide.data(), static_cast<DWORD>(length - 1), &written,
                  nullptr);
}

void WatchInterrupts() {
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

void UnwatchInterrupts() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
}

int InterruptCount() {
    return interrupts;
}

#endif
