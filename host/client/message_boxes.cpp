#include "client/message_boxes.h"

#include <utility>

#include "client/text_encoding.h"
#include "framework/framework.h"

namespace vemrado::client {

std::string BoxText(const char* text) {
    std::string utf8 = MessageToUtf8(text);
    while (!utf8.empty() && (utf8.back() == '\n' || utf8.back() == '\r')) utf8.pop_back();
    return utf8;
}

MessageBoxes::MessageBoxes(Show showBox) : show(std::move(showBox)) {
    FrameworkSetMessageBoxHandler(OnBox, this);
}

MessageBoxes::~MessageBoxes() {
    FrameworkSetMessageBoxHandler(nullptr, nullptr);
}

int MessageBoxes::OnBox(void* context, const char* text, unsigned int) {
    static_cast<MessageBoxes*>(context)->show(BoxText(text));
    constexpr int okButton = 1;
    return okButton;
}

}  // namespace vemrado::client
