#include "platform/text_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace vemrado::platform {

namespace {

constexpr char endOfInput = 0x1A;
constexpr char noMemory[] = "not enough memory";
constexpr size_t smallestBuffer = 4096;

}  // namespace

bool TextFile::Open(const char* path, size_t largestBuffer) {
    Close();
    outOfMemory = false;
    if (!file.Open(path)) return false;
    largestBufferSize = largestBuffer;
    if (!TakeBuffer(SizeOfFirstBuffer())) {
        file.Close();
        return false;
    }
    std::memset(buffer - searchSlack, '\n', 2 * searchSlack);
    cursor = filled = buffer;
    ended = zeroInBuffer = false;
    return true;
}

// A file whose length is known is held whole where it is small, with room for the read that finds its end.
size_t TextFile::SizeOfFirstBuffer() {
    const int64_t length = file.Length();
    if (length <= 0 || static_cast<uint64_t>(length) >= largestBufferSize) return largestBufferSize;
    return std::max(static_cast<size_t>(length) + 1, std::min(smallestBuffer, largestBufferSize));
}

// With what the buffer holds already.
bool TextFile::TakeBuffer(size_t size) {
    char* block = buffer == nullptr ? nullptr : buffer - searchSlack;
    void* moved = ReallocateOnHeap(block, searchSlack + size + searchSlack);
    outOfMemory = moved == nullptr;
    if (outOfMemory) return false;
    buffer = static_cast<char*>(moved) + searchSlack;
    bufferSize = size;
    return true;
}

void TextFile::Close() {
    file.Close();
    if (buffer != nullptr) FreeOnHeap(buffer - searchSlack);
    buffer = filled = nullptr;
    cursor = nullptr;
    ended = true;
    zeroInBuffer = false;
}

void TextFile::FailureText(const char* path, char* text, size_t capacity) const {
    if (outOfMemory) {
        std::snprintf(text, capacity, "%.*s: %s", static_cast<int>(std::min<size_t>(capacity / 2, 4096)),
                      path, noMemory);
    } else {
        OpenFailureText(path, file.LastError(), text, capacity);
    }
}

void TextFile::FailureReason(char* text, size_t capacity) const {
    if (outOfMemory) {
        std::snprintf(text, capacity, "%s", noMemory);
    } else {
        ErrorReason(file.LastError(), text, capacity);
    }
}

bool TextFile::Rewind() {
    if (file.Seek(0, Origin::start) != 0) return false;
    cursor = filled = buffer;
    std::memset(buffer, '\n', searchSlack);
    ended = zeroInBuffer = false;
    return true;
}

// Reads behind what is left in the buffer, which moves to its start. False on a read error or without memory,
// with what is left intact.
bool TextFile::Fill() {
    const size_t left = static_cast<size_t>(filled - cursor);
    if (left == bufferSize) {  // of a file that has grown, or is longer than it says
        if (!TakeBuffer(largestBufferSize)) return false;
    } else if (left > 0) {
        std::memmove(buffer, cursor, left);
    }
    cursor = buffer;
    filled = buffer + left;
    const int64_t count = file.Read(filled, bufferSize - left);
    if (count > 0) {
        const char* stop =
            static_cast<const char*>(std::memchr(filled, endOfInput, static_cast<size_t>(count)));
        ended = stop != nullptr;
        filled = ended ? buffer + (stop - buffer) : filled + count;
    } else if (count == 0) {
        ended = true;
    }
    zeroInBuffer = std::memchr(buffer, '\0', static_cast<size_t>(filled - buffer)) != nullptr;
    std::memset(filled, '\n', searchSlack);
    return count >= 0;
}

void TextFile::TakePiece(size_t count, std::string_view& line) {
    line = std::string_view(cursor, count);
    cursor += count;
}

ReadResult TextFile::ReadLine(size_t limit, std::string_view& line, bool& hadLineFeed) {
    const size_t most = limit - 1;
    hadLineFeed = lineGoesOn = false;
    // A line feed at index most can still belong to the line: after a carriage return, which is dropped.
    const char* stop;
    while ((stop = FindLineFeed(cursor, filled, most + 1)) == nullptr && !ended &&
           static_cast<size_t>(filled - cursor) <= most) {
        if (!Fill()) return ReadResult::error;
    }
    if (cursor == filled) return ReadResult::end;

    const size_t index = stop != nullptr ? static_cast<size_t>(stop - cursor) : 0;
    const size_t length = index - (index > 0 && cursor[index - 1] == '\r' ? 1 : 0);
    if (stop != nullptr && length < most) {
        hadLineFeed = true;
        TakePiece(length, line);
        cursor = stop + 1;
    } else {
        TakePiece(std::min(most, static_cast<size_t>(filled - cursor)), line);
        lineGoesOn = line.size() == most;
    }
    const size_t zero = line.find('\0');
    if (zero != std::string_view::npos) {
        line = line.substr(0, zero);
        hadLineFeed = false;
    }
    return ReadResult::line;
}

}  // namespace vemrado::platform
