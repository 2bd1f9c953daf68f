// The bytes of a page's file for the checked reading of maps.

#pragma once

#include "client/foreign_file.h"
#include "map/checked_lines.h"
#include "source.h"

namespace vemrado::web {

struct PageBytes {
    map::ByteSource source;
    bool markSkipped = false;  // a byte order mark stood before what the source gives
};

inline PageBytes BytesOf(int file) {
    std::string start(client::byteOrderMark.size(), ' ');
    const size_t got = ReadPageFile(file, 0, start.data(), start.size());
    const bool marked = got == start.size() && start == client::byteOrderMark;
    double offset = marked ? static_cast<double>(start.size()) : 0;
    return {[file, offset](char* to, size_t count) mutable {
                const size_t read = ReadPageFile(file, offset, to, count);
                offset += static_cast<double>(read);
                return read;
            },
            marked};
}

}  // namespace vemrado::web
