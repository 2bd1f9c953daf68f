#include "client/map_bytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/system.h"

namespace vemrado::client {

MapBytes::MapBytes(const std::string& fileName) : name(fileName) {
    const InputFile input = LookAtInput(fileName);
    markSkipped = input.markSkipped;
    provider = FrameworkGetFileProvider();
    if (provider != nullptr) provided = provider->open(provider->context, input.name.c_str());
    if (provided != nullptr) {
        length = static_cast<uint64_t>(std::max<int64_t>(provider->length(provided), 0));
        return;
    }
    file.reset(std::fopen(input.name.c_str(), "rb"));
    if (!file) Fail();
    std::error_code error;
    const auto size = std::filesystem::file_size(input.name, error);
    if (!error) length = size;
}

MapBytes::~MapBytes() {
    if (provided != nullptr) provider->close(provided);
}

size_t MapBytes::Read(char* to, size_t count) {
    if (provided != nullptr) {
        const int64_t got = provider->read(provided, to, count);
        if (got < 0) Fail();
        return static_cast<size_t>(got);
    }
    const size_t got = std::fread(to, 1, count, file.get());
    if (got == 0 && std::ferror(file.get()) != 0) Fail();
    return got;
}

void MapBytes::Fail() const {
    const int reason = errno != 0 ? errno : EIO;
    throw UnreadableFile(SystemTextToUtf8(ShownName(name.c_str())) + ": " +
                         SystemTextToUtf8(std::strerror(reason)));
}

}  // namespace vemrado::client
