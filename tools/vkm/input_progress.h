// Progress over many inputs: how many are done, their bytes, and the time left.

#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "inputs.h"

namespace vemrado::tools {

// A bar of the info window, drawn when standard error is a terminal; nothing for a single input, whose
// reading shows its own.
class InputProgress {
  public:
    explicit InputProgress(const std::vector<Input>& inputs);
    InputProgress(const InputProgress&) = delete;
    InputProgress& operator=(const InputProgress&) = delete;
    ~InputProgress();

    // One more input is done.
    void Finish(const Input& input) { Show(done + 1, bytesDone + input.bytes); }
    // So many are done, so many bytes of them.
    void Show(size_t inputsDone, uint64_t bytes);
    // So many are done, and such a part of the next.
    void ShowPart(size_t inputsDone, double part);

  private:
    using Clock = std::chrono::steady_clock;

    std::string Text(Clock::time_point now) const;

    const std::vector<Input>& inputs;
    size_t count;
    std::vector<uint64_t> bytesBefore;  // of each input
    uint64_t bytesOfAll = 0;
    size_t done = 0;
    uint64_t bytesDone = 0;
    Clock::time_point begin = Clock::now();
    Clock::time_point shown = begin;
    void* window = nullptr;
};

}  // namespace vemrado::tools
