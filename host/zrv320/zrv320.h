// Stand-in of the host's drawing library. The module calls setextpattline, setextpattpoint and GetZrvCountry
// and nothing else of it; the rest is for hosts of our own, which draw with the registered patterns. Any
// thread may call.

#pragma once

#include <cstdint>

#if defined(_WIN32)
#if defined(VEMRADO_BUILDING_ZRV320)
#define ZRV320_API __declspec(dllexport)
#else
#define ZRV320_API __declspec(dllimport)
#endif
#else
#define ZRV320_API __attribute__((visibility("default")))
#endif

#pragma pack(push, 1)
// One record of a pattern list; a list ends with a record of code '@' and x and y 0.
//   line patterns   x: length of a stretch; y: 0; code 1: drawn, 0: gap
//   point patterns  x, y: the first point, then differences to the point before; code 0: move, 1: draw
struct PatternElement {
    double x;
    double y;
    uint8_t code;
};
#pragma pack(pop)
static_assert(sizeof(PatternElement) == 17);

extern "C" {
// Registers a line or point pattern and returns its number; 0 when it was not registered. The list is copied.
ZRV320_API int16_t setextpattline(const PatternElement* elements, const char* name);
ZRV320_API int16_t setextpattpoint(const PatternElement* elements, const char* name);

// The host's language: 0 Czech, 2 German, otherwise English. VEMRADO_COUNTRY overrides what the system says
// (LC_ALL, LC_MESSAGES, LANG on Linux; the user's language on Windows).
ZRV320_API int GetZrvCountry(void);

// --- For hosts of our own ---

// The registered pattern of a number, ended by its '@' record, or null. Valid until ZrvClearPatterns.
ZRV320_API const PatternElement* ZrvLinePattern(int number);
ZRV320_API const PatternElement* ZrvPointPattern(int number);
// The name under which a number was registered, or null.
ZRV320_API const char* ZrvLinePatternName(int number);
ZRV320_API const char* ZrvPointPatternName(int number);
// Forgets every pattern; numbers begin at 1 again. Not while another thread draws with one.
ZRV320_API void ZrvClearPatterns(void);
}
