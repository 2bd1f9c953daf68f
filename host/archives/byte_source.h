// Bytes that come one after the other, from a file, a part of one or something that unpacks.

#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

namespace vemrado::archives {

// What is wrong with an archive: one sentence in the system's encoding, without the archive's name.
class ArchiveError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ByteSource {
  public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    // Up to count bytes; 0 only at the end. Throws ArchiveError when they cannot be had.
    virtual size_t Read(char* destination, size_t count) = 0;

    // Fills the destination; false when the bytes end before.
    bool ReadFully(char* destination, size_t count);
    // Passes over bytes; false when they end before.
    virtual bool Skip(uint64_t count);
};

// A part of a file on disk, as far as the file goes.
class FilePart : public ByteSource {
  public:
    FilePart(const std::string& path, uint64_t begin, uint64_t length);

    size_t Read(char* destination, size_t count) override;
    bool Skip(uint64_t count) override;

  private:
    std::ifstream file;
    uint64_t left;
};

// Length of a file on disk. Throws ArchiveError when it cannot be opened.
uint64_t FileLength(const std::string& path);

}  // namespace vemrado::archives
