// The lines of a VKM file, with the counts that drive the progress window.

#pragma once

#include <cstdint>
#include <string_view>

#include "platform/text_file.h"
#include "vkm/line_scan.h"
#include "vkm/tokenizer.h"

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

    LineResult ReadLine(CVKMTokenizer& line) {
        if (!TakeShortLine(line)) [[unlikely]] {
            const AnyLine any = TakeAnyLine();
            if (any.result != LineResult::line) return any.result;
            line = any.line;
        }
        if (++linesToStep == linesPerProgressStep) [[unlikely]] {
            linesToStep = 0;
            linesBefore += linesPerProgressStep;
            if (!progressStep(progressContext)) return LineResult::end;
        }
        return LineResult::line;
    }

    // For who reads a line where it stands: the characters ahead, of which the first start a line. None when
    // the next line may have to be read by ReadLine.
    std::string_view Ahead() const {
        return linesToStep + 1 == linesPerProgressStep ? std::string_view() : inputFile.Ahead();
    }
    // Takes the next line, of a length without and with its line end.
    void TakeAhead(size_t length, size_t withLineEnd) {
        inputFile.Take(withLineEnd);
        bytesRead += static_cast<uint32_t>(length) + 2;
        ++linesToStep;
    }

    // Lines read since construction, by every file; wraps as a 32-bit integer.
    int32_t LineCount() const { return static_cast<int32_t>(linesBefore + linesToStep); }

    // The lines of the file are numbered from here.
    void BeginFile() { linesOfFilesBefore = LineCount(); }
    // The number of the line just read, from 1.
    int32_t FileLine() const { return LineCount() - linesOfFilesBefore; }

    platform::TextFile inputFile;
    uint32_t bytesRead = 0;  // by lines, with a count of 1 for each line beside its line feed; wraps

  private:
    // A whole line that stands in the buffer and is short enough for one scan; false for any other.
    bool TakeShortLine(CVKMTokenizer& line) {
        const std::string_view ahead = inputFile.Ahead();
        if (ahead.empty()) return false;
        const LineScan scan = ScanLine(ahead.data());
        const auto lineEnd =
            static_cast<size_t>(__builtin_ctzll(scan.lineFeeds | uint64_t{1} << scannedCharacters));
        if (lineEnd >= scannedCharacters || lineEnd >= ahead.size()) return false;
        const size_t length = lineEnd - (lineEnd > 0 && ahead[lineEnd - 1] == '\r' ? 1 : 0);
        line = CVKMTokenizer(ahead.data(), length, scan.fields & LowBits(length));
        inputFile.Take(lineEnd + 1);
        bytesRead += static_cast<uint32_t>(length) + 2;
        return true;
    }

    // By value, so that the tokenizer of a short line stays in registers.
    struct AnyLine {
        LineResult result;
        CVKMTokenizer line;
    };
    AnyLine TakeAnyLine();

    ProgressStep progressStep;
    void* progressContext;
    uint32_t linesBefore = 0;  // a multiple of linesPerProgressStep
    uint32_t linesToStep = 0;
    int32_t linesOfFilesBefore = 0;
};

}  // namespace vemrado
