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
    explicit TextBuffer(std::size_t expected) { text_.reserve(expected); }

    TextBuffer& operator+=(char character) {
        if (used_ == block_.size()) Flush();
        block_[used_++] = character;
        return *this;
    }
    TextBuffer& operator+=(std::string_view piece) {
        if (block_.size() - used_ < piece.size()) Flush();
        if (piece.size() > block_.size()) {
            text_ += piece;
        } else {
            std::memcpy(block_.data() + used_, piece.data(), piece.size());
            used_ += piece.size();
        }
        return *this;
    }
    void Append(std::size_t count, char character) {
        Flush();
        text_.append(count, character);
    }

    // The whole text; the buffer is empty afterwards.
    std::string Take() {
        Flush();
        return std::move(text_);
    }

  private:
    void Flush() {
        text_.append(block_.data(), used_);
        used_ = 0;
    }

    std::array<char, 4096> block_;
    std::size_t used_ = 0;
    std::string text_;
};

}  // namespace generate
