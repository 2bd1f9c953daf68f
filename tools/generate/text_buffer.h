// A text that grows by single characters and short pieces: they are gathered in a block first, which is
// several times as fast as appending each to a string.

#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace generate {

class TextBuffer {
  public:
    explicit TextBuffer(std::size_t expected) { text.reserve(expected); }

    TextBuffer& operator+=(char character) {
        if (used == block.size()) Flush();
        block[used++] = character;
        return *this;
    }
    TextBuffer& operator+=(std::string_view piece) {
        if (block.size() - used < piece.size()) Flush();
        if (piece.size() > block.size()) {
            text += piece;
        } else {
            std::memcpy(block.data() + used, piece.data(), piece.size());
            used += piece.size();
        }
        return *this;
    }
    void Append(std::size_t count, char character) {
        Flush();
        text.append(count, character);
    }

    // The whole text; the buffer is empty afterwards.
    std::string Take() {
        Flush();
        return std::move(text);
    }

  private:
    void Flush() {
        text.append(block.data(), used);
        used = 0;
    }

    std::array<char, 4096> block;
    std::size_t used = 0;
    std::string text;
};

}  // namespace generate
