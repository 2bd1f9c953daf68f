// The lines of a VKM file, with the counts that drive the progress window.

#pragma once

#include <cstdint>
#include <string_view>

#include "platform/text_file.h"

namespace vemrado {

enum class LineResult {
    line,
    end,    // the file has ended, or the user stopped the import; reading on is possible
    error,  // the file could not be read; TextFile::FailureReason says why
};

class CVKMLineReader {
  public:
    // The step is called after every 50th line; false stops the reading (the line just read is lost).
    using ProgressStep = bool (*)(void* context);
    CVKMLineReader(ProgressStep step, void* context) : progressStep(step), progressContext(context) {}

    // At most 1023 characters of the file are one line, its line feed included.
    static constexpr size_t lineLimit = 1024;
    static constexpr uint32_t linesPerProgressStep = 50;

    LineResult ReadLine(std::string_view& line) {
        bool hadLineFeed;
        const platform::ReadResult result = inputFile.ReadLine(lineLimit, line, hadLineFeed);
        if (result != platform::ReadResult::line) [[unlikely]] {
            return result == platform::ReadResult::end ? LineResult::end : LineResult::error;
        }
        bytesRead += static_cast<uint32_t>(line.size()) + (hadLineFeed ? 2 : 1);
        if (++linesToStep == linesPerProgressStep) [[unlikely]] {
            linesToStep = 0;
            linesBefore += linesPerProgressStep;
            if (!progressStep(progressContext)) return LineResult::end;
        }
        return LineResult::line;
    }

    // Lines read since construction, by every file; wraps as a 32-bit integer.
    int32_t LineCount() const { return static_cast<int32_t>(linesBefore + linesToStep); }

    platform::TextFile inputFile;
    uint32_t bytesRead = 0;  // by lines, with a count of 1 for each line beside its line feed; wraps

  private:
    ProgressStep progressStep;
    void* progressContext;
    uint32_t linesBefore = 0;  // a multiple of linesPerProgressStep
    uint32_t linesToStep = 0;
};

}  // namespace vemrado
