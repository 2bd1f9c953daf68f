// Text files read line by line: VKM files and the symbology tables.
//
// Text mode: a carriage return before a line feed is dropped and 0x1A ends the input. A zero character inside a line
// ends the line at that point; what follows it on the line is lost.
//
// Memory: one fixed buffer, taken at Open and returned at Close, whatever the file's size.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace vemrado::platform {

enum class ReadResult { line, end, error };

class TextFile {
  public:
    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() { Close(); }

    // False when the file cannot be opened or there is no memory for the buffer; LastError tells why.
    bool Open(const char* path);
    void Close();
    bool IsOpen() const { return file.IsOpen(); }
    int LastError() const { return lastError; }
    // As File::Length.
    int64_t Length() { return file.Length(); }

    // The next line without its line end, at most limit - 1 characters of the file counting the line feed: a longer
    // line comes back in pieces. The view is valid until the next call. hadLineFeed says whether the line's own line
    // feed was taken. After ReadResult::error the same call may be tried again; nothing read before is lost.
    ReadResult ReadLine(size_t limit, std::string_view& line, bool& hadLineFeed);

    // Back to the start of the file. False on failure.
    bool Rewind();

    static constexpr size_t bufferSize = 262144;
    static constexpr size_t largestLimit = bufferSize / 2;

  private:
    File file;
    char* buffer = nullptr;
    char* cursor = nullptr;  // next character to hand out
    char* filled = nullptr;  // end of the characters that may be handed out
    bool ended = false;      // no more characters come from the file: its end, or 0x1A
    int lastError = 0;
};

}  // namespace vemrado::platform
