// The bytes of a map file, from where the module would read them: standard input, archives and other places
// that the framework's file provider knows, and files.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "framework/framework.h"

namespace vemrado::client {

// A file that cannot be opened or read. what() is one sentence of UTF-8 that names file and reason.
class UnreadableFile : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class MapBytes {
  public:
    // Looks at the start of the file first. Throws ForeignFile for what is no map, and UnreadableFile.
    explicit MapBytes(const std::string& name);
    MapBytes(const MapBytes&) = delete;
    MapBytes& operator=(const MapBytes&) = delete;
    ~MapBytes();

    // Up to count bytes; 0 at the end. Throws UnreadableFile.
    size_t Read(char* to, size_t count);

    // In bytes; 0 when it is not known.
    uint64_t Length() const { return length; }
    // True when a byte order mark before the first record is not among the bytes.
    bool MarkSkipped() const { return markSkipped; }

  private:
    [[noreturn]] void Fail() const;

    std::string name;
    bool markSkipped = false;
    const FrameworkFileProvider* provider = nullptr;  // of the file below, if it is a provider's
    void* provided = nullptr;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file{nullptr, &std::fclose};
    uint64_t length = 0;
};

}  // namespace vemrado::client
