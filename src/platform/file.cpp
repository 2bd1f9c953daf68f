#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/native.h"
#include "platform/platform.h"
#include "platform/provided_file.h"

namespace vemrado::platform {

namespace {

ProvidedFile* Provided(void* handle) {
    return static_cast<ProvidedFile*>(handle);
}

}  // namespace

bool File::Open(const char* path) {
    Close();
    handle = ProvidedOpen(path, lastError);
    provided = handle != nullptr;
    if (handle == nullptr && lastError == 0) handle = NativeOpen(path, lastError);
    return handle != nullptr;
}

void File::Close() {
    if (handle == nullptr) return;
    if (provided) {
        ProvidedClose(Provided(handle));
    } else {
        NativeClose(handle);
    }
    handle = nullptr;
    pendingError = 0;
}

int64_t File::ReadOnce(void* destination, size_t count) {
    return provided ? ProvidedRead(Provided(handle), destination, count, lastError)
                    : NativeRead(handle, destination, count, lastError);
}

int64_t File::Read(void* destination, size_t count) {
    if (handle == nullptr || pendingError != 0) {
        lastError = handle == nullptr ? readError : pendingError;
        pendingError = 0;
        return -1;
    }
    size_t done = 0;
    while (done < count) {
        const int64_t result = ReadOnce(static_cast<char*>(destination) + done, count - done);
        if (result < 0 && done == 0) return -1;
        if (result < 0) pendingError = lastError;
        if (result <= 0) break;
        done += static_cast<size_t>(result);
    }
    return static_cast<int64_t>(done);
}

int64_t File::Seek(int64_t offset, Origin origin) {
    if (handle == nullptr) {
        lastError = seekError;
        return -1;
    }
    const int64_t position = provided ? ProvidedSeek(Provided(handle), offset, origin, lastError)
                                      : NativeSeek(handle, offset, origin, lastError);
    if (position >= 0) pendingError = 0;
    return position;
}

int64_t File::Length() {
    if (handle == nullptr) {
        lastError = seekError;
        return -1;
    }
    return provided ? ProvidedLength(Provided(handle), lastError) : NativeLength(handle, lastError);
}

void OpenFailureText(const char* path, int error, char* text, size_t capacity) {
    if (capacity == 0) return;
    constexpr std::string_view separator = ": ";
    constexpr std::string_view cut = "...";
    char reasonText[256];
    ErrorReason(error, reasonText, sizeof reasonText);
    const std::string_view reason = reasonText;
    std::string_view name = path;

    const size_t besideName = separator.size() + reason.size() + 1;
    const size_t room = capacity > besideName ? capacity - besideName : 0;
    char* end = text;
    const auto append = [&](std::string_view part) {
        const auto left = static_cast<size_t>(text + capacity - 1 - end);
        end += part.copy(end, std::min(part.size(), left));
    };
    if (name.size() > room) {
        append(cut);
        name.remove_prefix(name.size() - (room > cut.size() ? room - cut.size() : 0));
    }
    append(name);
    append(separator);
    append(reason);
    *end = '\0';
    // One line, whatever the name holds.
    std::replace_if(
        text, end, [](char character) { return static_cast<unsigned char>(character) < ' '; }, '?');
}

}  // namespace vemrado::platform
