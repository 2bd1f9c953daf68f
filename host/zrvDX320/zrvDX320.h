// Stand-in of the host's info-window library. The module calls create_info_ext, draw_info and close_info and
// nothing else of it. The stand-in draws a progress bar on standard error when that is a terminal and stays
// silent otherwise; an interrupt from the keyboard while a window is open is the user's request to stop. Any
// thread may call, each with windows of its own; of several windows the one that drew first has the terminal.

#pragma once

#if defined(_WIN32)
#if defined(VEMRADO_BUILDING_ZRVDX320)
#define ZRVDX320_API __declspec(dllexport)
#else
#define ZRVDX320_API __declspec(dllimport)
#endif
#else
#define ZRVDX320_API __attribute__((visibility("default")))
#endif

extern "C" {
// Opens a window with lines of text; the texts are copied. Returns its handle, null when none was made.
ZRVDX320_API void* create_info_ext(const char* const* lines, int count, const char* text, const char* end);
// Draws a position between 0 and maximum. Not 0: the user asks to stop.
ZRVDX320_API int draw_info(void* handle, int maximum, int position, int reserved);
ZRVDX320_API void close_info(void* handle);

// --- For hosts of our own ---

// Not 0 once the user has asked to stop, until InfoResetStop.
ZRVDX320_API int InfoStopRequested(void);
ZRVDX320_API void InfoResetStop(void);
// 0: draw nothing whatever standard error is. The stop request works all the same.
ZRVDX320_API void InfoSetVisible(int visible);

// What a thread has in place of windows: nothing is drawn, and interrupts are left alone.
struct InfoThreadProgress {
    void* context;
    // As draw_info.
    int (*draw)(void* context, int maximum, int position);
};
// Sets the calling thread's progress, for windows that are open too; null: windows again. Not copied: it must
// live as long as it is set. Returns what was set before.
ZRVDX320_API const InfoThreadProgress* InfoSetThreadProgress(const InfoThreadProgress* progress);
}
