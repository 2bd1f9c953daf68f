// The info window as the bar of a command's own work.

#pragma once

#include "client/stop_request.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::tools {

class ProgressBar {
  public:
    // The caption is in Windows-1250, as the info window takes it.
    explicit ProgressBar(const char* caption) : window(create_info_ext(&caption, 1, nullptr, "")) {}
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() {
        if (window != nullptr) close_info(window);
    }

    // False when the user asks to stop.
    bool Draw(double share) {
        constexpr int whole = 100;
        const int percent = static_cast<int>(whole * share);
        if (window == nullptr || percent == drawn) return !client::StopRequested();
        drawn = percent;
        return draw_info(window, whole, percent, 0) == 0 && !client::StopRequested();
    }

  private:
    void* window;
    int drawn = -1;
};

}  // namespace vemrado::tools
