// Standard output for data: large writes, and failures that are told apart.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vemrado::tools {

class StandardOutput {
  public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    // These throw ClosedPipe when the reader has gone away and Failure when the bytes cannot be written.
    void Write(std::string_view bytes);
    void Flush();

    // For writers that compose in place: room for that many bytes (at most largestRoom), and how many were
    // used.
    char* Room(size_t count) {
        if (buffer.size() - used < count) Flush();
        return buffer.data() + used;
    }
    void Use(const char* end) { used = static_cast<size_t>(end - buffer.data()); }

    static constexpr size_t largestRoom = 4096;

  private:
    std::vector<char> buffer;
    size_t used = 0;
};

}  // namespace vemrado::tools
