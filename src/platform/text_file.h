// Text files read line by line: VKM files and the symbology tables.
//
// Text mode: a carriage return before a line feed is dropped and 0x1A ends the input. A zero character inside
// a line ends the line at that point; what follows it on the line is lost.
//
// Memory: one buffer, taken at Open and returned at Close, of a fixed size or of a smaller file's.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/line_feed.h"
#include "platform/platform.h"

namespace vemrado::platform {

enum class ReadResult { line, end, error };

class TextFile {
  public:
    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() { Close(); }

    static constexpr size_t defaultBufferSize = 262144;

    // False when the file cannot be opened or there is no memory for the buffer; FailureText tells why. The
    // largest buffer must be larger than every limit given to ReadLine.
    bool Open(const char* path, size_t largestBuffer = defaultBufferSize);
    void Close();
    bool IsOpen() const { return file.IsOpen(); }
    // As File::Length.
    int64_t Length() { return file.Length(); }
    // One line that names the path and the reason of the last failure, at most capacity - 1 characters.
    void FailureText(const char* path, char* text, size_t capacity) const;
    // The reason alone.
    void FailureReason(char* text, size_t capacity) const;

    // The next line without its line end, at most limit - 1 characters of the file counting the line feed: a
    // longer line comes back in pieces. The view is valid until the next call. hadLineFeed says whether the
    // line ends with its line feed: not so for a piece, for a line cut by a zero character and for an
    // unfinished last line. After ReadResult::error the same call may be tried again; nothing read before is
    // lost.
    ReadResult ReadLine(size_t limit, std::string_view& line, bool& hadLineFeed);

    // After a line without its line feed: whether it was a piece, so that the next call goes on in the same
    // line.
    bool LineGoesOn() const { return lineGoesOn; }

    // For readers with a search of their own: the characters that are buffered, with searchSlack line feeds
    // behind them. None while a zero character may be among them. From whatever place in them,
    // searchSlack characters on either side may be looked at.
    std::string_view Ahead() const {
        return zeroInBuffer ? std::string_view()
                            : std::string_view(cursor, static_cast<size_t>(filled - cursor));
    }
    // Takes characters that Ahead has shown.
    void Take(size_t count) { cursor += count; }

    // Back to the start of the file. False on failure.
    bool Rewind();

  private:
    size_t SizeOfFirstBuffer();
    bool TakeBuffer(size_t size);
    void TakePiece(size_t count, std::string_view& line);
    bool Fill();

    File file;
    char* buffer = nullptr;  // bufferSize characters, with searchSlack more on either side
    size_t bufferSize = 0;
    size_t largestBufferSize = 0;
    const char* cursor = nullptr;  // next character to hand out
    char* filled = nullptr;        // end of the characters that may be handed out
    bool ended = true;             // no more characters come from the file: its end, 0x1A, or no open file
    bool zeroInBuffer = false;     // a zero character stands between cursor and filled, or did
    bool outOfMemory = false;      // the last failure was the buffer's
    bool lineGoesOn = false;       // the last line without its line feed was a piece
};

}  // namespace vemrado::platform
