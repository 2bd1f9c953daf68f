// A host's own info-window library: keeps what the module asks of it.

#include <string>

#include "zrvDX320/zrvDX320.h"

namespace {
std::string calls;
int stopFrom = 1000;
}  // namespace

extern "C" {
ZRVDX320_API const char* RecordedCalls() {
    return calls.c_str();
}
// The window asks to stop when it is drawn at this position or a later one.
ZRVDX320_API void StopFrom(int position) {
    stopFrom = position;
}

void* create_info_ext(const char* const* lines, int count, const char* text, const char* end) {
    calls += "create";
    for (int i = 0; i < count; ++i) calls += std::string(" ") + lines[i];
    calls += std::string("|") + text + "|" + end + "\n";
    return &calls;
}

int draw_info(void* handle, int maximum, int position, int reserved) {
    if (handle != &calls) calls += "wrong handle\n";
    calls += "draw " + std::to_string(position) + "/" + std::to_string(maximum) + " " +
             std::to_string(reserved) + "\n";
    return position >= stopFrom;
}

void close_info(void* handle) {
    calls += handle == &calls ? "close\n" : "wrong handle\n";
}
}
