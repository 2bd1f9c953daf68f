#include "client/atomic_output.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "client/system.h"

namespace vemrado::client {

AtomicOutput::AtomicOutput(const std::string& path)
    : shownPath(path), target(FollowLinks(path)), file(nullptr) {
    const FileKind kind = KindOfFile(target);
    if (kind == FileKind::directory) Fail(EISDIR);
    errno = 0;
    if (kind == FileKind::other) {
        file = std::fopen(target.c_str(), "wb");
    } else {
        temporary = target + '.' + std::to_string(ProcessNumber()) + ".part";
        file = CreateNewFile(temporary);
    }
    if (file == nullptr) {
        temporary.clear();
        Fail(errno);
    }
}

AtomicOutput::~AtomicOutput() {
    if (file != nullptr) std::fclose(file);
    RemoveTemporary();
}

void AtomicOutput::Write(std::string_view bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) Fail(errno);
}

void AtomicOutput::Commit() {
    std::FILE* complete = file;
    file = nullptr;
    errno = 0;
    if (std::fclose(complete) != 0) Fail(errno);
    if (temporary.empty()) return;
    if (!PutInPlace(temporary, target)) Fail(errno);
    temporary.clear();
}

void AtomicOutput::RemoveTemporary() const {
    std::error_code ignored;
    if (!temporary.empty()) std::filesystem::remove(NativePath(temporary), ignored);
}

void AtomicOutput::Abandon() const {
    RemoveTemporary();
}

// The destructor of a finished object removes the temporary file; in the constructor there is none yet.
void AtomicOutput::Fail(int error) {
    throw OutputError(
        SystemTextToUtf8(shownPath + ": cannot be written: " + std::generic_category().message(error)));
}

}  // namespace vemrado::client
