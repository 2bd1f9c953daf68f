#include "messages/collected_messages.h"

#include <new>

#include "framework/framework.h"

namespace vemrado {

void CollectedMessages::ClearMessages() {
    haveMessages = 0;
    String().swap(messages);  // with its memory
}

void CollectedMessages::AddMessage(const char* text) {
    Append(nullptr, text);
}

void CollectedMessages::AddFileMessage(const char* path, const char* text) {
    Append(path, text);
}

void CollectedMessages::ShowMessages() const {
    if (haveMessages == 1) AfxMessageBox(messages.c_str(), frameworkExclamationOk, 0);
}

void CollectedMessages::Append(const char* path, const char* text) {
    try {
        String line;
        if (path != nullptr) line.append(path).append(": ");
        line.append(text).append("\n");
        messages.append(line);
        haveMessages = 1;
    } catch (const std::bad_alloc&) {
        // The import goes on without it.
    }
}

}  // namespace vemrado
