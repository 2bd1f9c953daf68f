// Error texts, media dialogs and messages.

#include <cerrno>
#include <cstring>

#include "framework/framework.h"
#include "platform/native.h"
#include "platform/posix/errors.h"

namespace vemrado::platform {

const int readError = EIO;
const int seekError = ESPIPE;
const int memoryError = ENOMEM;

void ErrorReason(int error, char* text, size_t capacity) {
    if (capacity == 0) return;
    const char* reason =
        error == lockedError ? "The file is locked by another program" : std::strerror(error);
    const size_t length = strnlen(reason, capacity - 1);
    std::memcpy(text, reason, length);
    text[length] = '\0';
}

// There are no such dialogs here.
CriticalErrorGuard::CriticalErrorGuard() : previousMode(0) {}
CriticalErrorGuard::~CriticalErrorGuard() {
    static_cast<void>(previousMode);
}

void PumpMessages() {
    FrameworkPumpMessages();
}

}  // namespace vemrado::platform
