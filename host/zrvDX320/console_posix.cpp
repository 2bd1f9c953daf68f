#if !defined(_WIN32)

#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>

#include "zrvDX320/console.h"

namespace {

// The signal may come to any thread.
std::atomic<int> interrupts = 0;
static_assert(std::atomic<int>::is_always_lock_free);
struct sigaction previousAction;
bool watching = false;

void OnInterrupt(int) {
    ++interrupts;
}

}  // namespace

int TerminalColumns() {
    if (isatty(STDERR_FILENO) == 0) return 0;
    constexpr int usualColumns = 80;
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usualColumns;
    return size.ws_col;
}

void WriteTerminal(const char* text) {
    std::fputs(text, stderr);
    std::fflush(stderr);
}

void WatchInterrupts() {
    if (sigaction(SIGINT, nullptr, &previousAction) != 0 || previousAction.sa_handler == SIG_IGN) return;
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    watching = sigaction(SIGINT, &action, nullptr) == 0;
}

void UnwatchInterrupts() {
    if (watching) sigaction(SIGINT, &previousAction, nullptr);
    watching = false;
}

int InterruptCount() {
    return interrupts;
}

#endif
