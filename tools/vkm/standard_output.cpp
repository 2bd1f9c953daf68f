#include "standard_output.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "client/system.h"
#include "failure.h"

namespace vemrado::tools {

StandardOutput::StandardOutput() : buffer(256 * 1024) {}

void StandardOutput::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t count = std::min(bytes.size(), largestRoom);
        char* room = Room(count);
        Use(std::copy_n(bytes.data(), count, room));
        bytes.remove_prefix(count);
    }
}

void StandardOutput::Flush() {
    const std::string_view bytes(buffer.data(), used);
    used = 0;
    switch (client::WriteStandardOutput(bytes)) {
        case client::WriteResult::done:
            return;
        case client::WriteResult::closedPipe:
            throw ClosedPipe();
        case client::WriteResult::failed:
            throw Failure(exitInternal,
                          "standard output: cannot be written: " + std::generic_category().message(errno));
    }
}

}  // namespace vemrado::tools
