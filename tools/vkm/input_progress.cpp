#include "input_progress.h"

#include <algorithm>

#include "zrvDX320/zrvDX320.h"

namespace vemrado::tools {
namespace {

std::string Megabytes(uint64_t bytes) {
    constexpr uint64_t tenth = 100000;
    const std::string tenths = std::to_string(bytes / tenth);
    return (tenths.size() > 1 ? tenths.substr(0, tenths.size() - 1) : "0") + "." + tenths.back();
}

std::string Duration(double seconds) {
    const auto whole = static_cast<long>(seconds + 0.5);
    if (whole < 90) return std::to_string(whole) + " s";
    return std::to_string((whole + 30) / 60) + " min";
}

}  // namespace

InputProgress::InputProgress(const std::vector<Input>& all) : inputs(all), count(all.size()) {
    for (const Input& input : inputs) {
        bytesBefore.push_back(bytesOfAll);
        bytesOfAll += input.bytes;
    }
}

void InputProgress::ShowPart(size_t inputsDone, double part) {
    if (inputsDone >= count) return Show(count, bytesOfAll);
    const auto partBytes = part * static_cast<double>(inputs[inputsDone].bytes);
    Show(inputsDone, bytesBefore[inputsDone] + static_cast<uint64_t>(partBytes));
}

InputProgress::~InputProgress() {
    if (window != nullptr) close_info(window);
}

std::string InputProgress::Text(Clock::time_point now) const {
    if (count < 2) return "Converting";
    std::string text = std::to_string(done) + " of " + std::to_string(count) + " maps";
    if (bytesOfAll == 0) return text;
    text += ", " + Megabytes(bytesDone) + " of " + Megabytes(bytesOfAll) + " MB";
    if (bytesDone == 0) return text;
    const double passed = std::chrono::duration<double>(now - begin).count();
    const double share = static_cast<double>(bytesDone) / static_cast<double>(bytesOfAll);
    return text + ", " + Duration(passed * (1.0 - share) / share) + " left";
}

// A window keeps its text, so each text has a window of its own.
void InputProgress::Show(size_t inputsDone, uint64_t bytes) {
    constexpr std::chrono::milliseconds between(500);
    done = std::min(inputsDone, count);
    bytesDone = std::min(bytes, bytesOfAll);
    const Clock::time_point now = Clock::now();
    if (now - shown < between) return;
    shown = now;
    if (window != nullptr) close_info(window);
    window = create_info_ext(nullptr, 0, Text(now).c_str(), "");
    constexpr double permille = 1000;
    const double share = bytesOfAll > 0 ? static_cast<double>(bytesDone) / static_cast<double>(bytesOfAll)
                                        : static_cast<double>(done) / static_cast<double>(count);
    draw_info(window, static_cast<int>(permille), static_cast<int>(permille * share), 0);
}

}  // namespace vemrado::tools
