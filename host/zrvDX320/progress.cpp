// The info window as a progress bar in one line of the terminal.

#include <algorithm>
#include <atomic>
#include <new>
#include <string>
#include <utility>

#include "lock.h"
#include "windows1250.h"
#include "zrvDX320/console.h"
#include "zrvDX320/zrvDX320.h"

namespace {

struct InfoWindow {
    std::string text;
    int interruptsBefore;  // at its opening: only a later one is a request to stop this window's work
    bool onTerminal;       // at its opening: the question is too slow for every call
    size_t drawn;          // columns that the last line took
    int percent;           // what the last call showed or would have shown; -1 before the first
};

// Around what follows, and the terminal's line.
standin::Lock windowLock;
int openWindows = 0;
const InfoWindow* windowOnTerminal = nullptr;
bool visible = true;

std::atomic<int> interruptsForgotten = 0;

constinit thread_local const InfoThreadProgress* threadProgress = nullptr;

// The handle of all windows that were opened while their thread had progress of its own.
char noWindow;

size_t CharacterCount(const std::string& utf8) {
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char unit) { return (unit & 0xC0) != 0x80; }));
}

// Reading input file [##########----------]  50 %
// A terminal too narrow for that gets the number alone.
std::string BarLine(const std::string& text, int columns, int percent) {
    constexpr size_t widestBar = 40;
    constexpr size_t besideBar = 10;  // blanks, brackets, number, and the last column, after which lines wrap
    std::string number = std::to_string(percent) + " %";
    number.insert(0, 5 - number.size(), ' ');
    const size_t used = CharacterCount(text) + besideBar;
    if (static_cast<size_t>(columns) <= used) return number;
    const size_t width = std::min(widestBar, static_cast<size_t>(columns) - used);
    const size_t filled = width * static_cast<size_t>(percent) / 100;
    return text + " [" + std::string(filled, '#') + std::string(width - filled, '-') + "] " + number;
}

void Draw(InfoWindow& window, int maximum, int position) {
    if (maximum <= 0) return;
    const int percent = static_cast<int>(100LL * std::clamp(position, 0, maximum) / maximum);
    // Some hosts call far more often than the number changes.
    if (percent == window.percent) return;
    window.percent = percent;
    if (windowOnTerminal != nullptr && windowOnTerminal != &window) return;
    const int columns = visible && window.onTerminal ? TerminalColumns() : 0;
    if (columns == 0) return;
    const std::string line = BarLine(window.text, columns, percent);
    windowOnTerminal = &window;
    WriteTerminal(("\r" + line).c_str());
    window.drawn = CharacterCount(line);
}

void Erase(const InfoWindow& window) {
    if (window.drawn == 0) return;
    std::string line = "\r";
    line.append(window.drawn, ' ').append("\r");
    WriteTerminal(line.c_str());
}

}  // namespace

void* create_info_ext(const char* const* lines, int count, const char* text, const char*) {
    if (threadProgress != nullptr) return &noWindow;
    const char* caption = text != nullptr ? text : (lines != nullptr && count > 0) ? lines[0] : nullptr;
    try {
        auto* window = new InfoWindow{windows1250::ToUtf8(caption != nullptr ? caption : ""),
                                      InterruptCount(), TerminalColumns() != 0, 0, -1};
        const standin::Holding holding(windowLock);
        if (openWindows++ == 0) WatchInterrupts();
        return window;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

int draw_info(void* handle, int maximum, int position, int) {
    if (threadProgress != nullptr) return threadProgress->draw(threadProgress->context, maximum, position);
    if (handle == nullptr || handle == &noWindow) return 0;
    auto& window = *static_cast<InfoWindow*>(handle);
    if (InterruptCount() != window.interruptsBefore) return 1;
    const standin::Holding holding(windowLock);
    try {
        Draw(window, maximum, position);
    } catch (const std::bad_alloc&) {
        // The work goes on without a picture of it.
    }
    return 0;
}

void close_info(void* handle) {
    if (handle == nullptr || handle == &noWindow) return;
    auto* window = static_cast<InfoWindow*>(handle);
    const standin::Holding holding(windowLock);
    if (windowOnTerminal == window) windowOnTerminal = nullptr;
    try {
        Erase(*window);
    } catch (const std::bad_alloc&) {
        // The last picture stays.
    }
    delete window;
    if (--openWindows == 0) UnwatchInterrupts();
}

int InfoStopRequested(void) {
    return InterruptCount() != interruptsForgotten ? 1 : 0;
}

void InfoResetStop(void) {
    interruptsForgotten = InterruptCount();
}

void InfoSetVisible(int value) {
    const standin::Holding holding(windowLock);
    visible = value != 0;
}

const InfoThreadProgress* InfoSetThreadProgress(const InfoThreadProgress* progress) {
    return std::exchange(threadProgress, progress);
}
