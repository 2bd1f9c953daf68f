// The module's message boxes, shown the host's way.

#pragma once

#include <functional>
#include <string>

namespace vemrado::client {

// The text of a box in UTF-8, without the line end at its end.
std::string BoxText(const char* text);

// While an object of this class lives, boxes go to it. One at a time.
class MessageBoxes {
  public:
    // Gets the text of a box in UTF-8, without the line end at its end.
    using Show = std::function<void(const std::string& text)>;

    explicit MessageBoxes(Show show);
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;
    ~MessageBoxes();

  private:
    static int OnBox(void* context, const char* text, unsigned int style);

    Show show;
};

}  // namespace vemrado::client
