// What deflate has packed, unpacked while it is read.

#pragma once

#include <zlib.h>

#include <memory>
#include <vector>

#include "archives/byte_source.h"

namespace vemrado::archives {

// A file packed to swamp its reader is refused: more than this many bytes at more than this many times the
// packed size. Maps come to ten or twenty times.
inline constexpr uint64_t generousSize = uint64_t{256} << 20;
inline constexpr uint64_t highestRatio = 200;

class Unpacked : public ByteSource {
  public:
    enum class Form { raw, gzip };  // raw: bare deflate, as zip archives have it

    Unpacked(std::unique_ptr<ByteSource> from, Form form);
    ~Unpacked() override;

    size_t Read(char* destination, size_t count) override;

  private:
    void Refill();
    // The end of a packed stream; a gzip file may hold several, one after the other.
    void EndStream();

    std::unique_ptr<ByteSource> packed;
    Form form;
    z_stream stream{};
    std::vector<char> block;
    uint64_t packedBytes = 0;
    uint64_t unpackedBytes = 0;
    bool ended = false;
};

// Passes bytes on and throws at their end when they are not so many, or not of this checksum.
class Checked : public ByteSource {
  public:
    Checked(std::unique_ptr<ByteSource> from, uint64_t size, uint32_t checksum)
        : source(std::move(from)), left(size), wanted(checksum) {}

    size_t Read(char* destination, size_t count) override;

  private:
    std::unique_ptr<ByteSource> source;
    uint64_t left;
    uint32_t wanted;
    uint32_t found = 0;
};

}  // namespace vemrado::archives
