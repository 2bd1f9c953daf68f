#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>

#include "recording.h"
#include "zrv320/zrv320.h"

namespace {

std::string recording;
std::string taken;
int16_t nextResult = 1;
int16_t resultStep = 1;
std::atomic<bool> inside = false;

int16_t Record(const char* kind, const PatternElement* element, const char* name) {
    if (inside.exchange(true)) recording += "overlap ";
    std::this_thread::yield();  // the longer, the likelier that another call comes
    recording.append(kind).append(" ").append(name).append(":");
    char record[96];
    for (; element->code != '@'; ++element) {
        std::snprintf(record, sizeof record, " %.10g,%.10g,%d", element->x, element->y, element->code);
        recording += record;
    }
    recording += element->x == 0 && element->y == 0 ? " @\n" : " unclean end\n";
    inside = false;
    return std::exchange(nextResult, static_cast<int16_t>(nextResult + resultStep));
}

}  // namespace

extern "C" {
int16_t setextpattline(const PatternElement* elements, const char* name) {
    return Record("line", elements, name);
}
int16_t setextpattpoint(const PatternElement* elements, const char* name) {
    return Record("point", elements, name);
}
int GetZrvCountry(void) {
    return 1;
}

ZRV320_API const char* TakeRecording() {
    taken = std::exchange(recording, "");
    return taken.c_str();
}
ZRV320_API void SetResults(int16_t first, int16_t step) {
    nextResult = first;
    resultStep = step;
}
}
