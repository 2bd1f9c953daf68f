#include "archives/unpacked.h"

#include <algorithm>
#include <new>

namespace vemrado::archives {

Unpacked::Unpacked(std::unique_ptr<ByteSource> from, Form packedForm)
    : packed(std::move(from)), form(packedForm), block(size_t{1} << 16) {
    const int windowBits = form == Form::raw ? -MAX_WBITS : MAX_WBITS + 16;
    if (inflateInit2(&stream, windowBits) != Z_OK) throw std::bad_alloc();
}

Unpacked::~Unpacked() {
    inflateEnd(&stream);
}

void Unpacked::Refill() {
    if (stream.avail_in > 0) return;
    const size_t got = packed->Read(block.data(), block.size());
    packedBytes += got;
    stream.next_in = reinterpret_cast<Bytef*>(block.data());
    stream.avail_in = static_cast<uInt>(got);
}

void Unpacked::EndStream() {
    if (form == Form::gzip) Refill();
    ended = form == Form::raw || stream.avail_in == 0;
    if (!ended && inflateReset(&stream) != Z_OK) throw ArchiveError("its packed data are damaged");
}

size_t Unpacked::Read(char* destination, size_t count) {
    stream.next_out = reinterpret_cast<Bytef*>(destination);
    stream.avail_out = static_cast<uInt>(std::min<size_t>(count, size_t{1} << 20));
    const uInt room = stream.avail_out;
    while (!ended && stream.avail_out == room && room > 0) {
        Refill();
        if (stream.avail_in == 0) throw ArchiveError("its packed data end too early");
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (result == Z_STREAM_END) {
            EndStream();
        } else if (result != Z_OK) {
            throw ArchiveError("its packed data are damaged");
        }
    }
    const size_t got = room - stream.avail_out;
    unpackedBytes += got;
    if (unpackedBytes > generousSize && unpackedBytes / highestRatio > packedBytes)
        throw ArchiveError("it unpacks to more than 256 MiB at more than 200 times its size");
    return got;
}

// Reads as much as is wanted, so that the end is met together with the last byte: who needs no more never
// asks.
size_t Checked::Read(char* destination, size_t count) {
    size_t got = 0;
    bool ended = false;
    while (got < count && !ended) {
        const size_t more = source->Read(destination + got, count - got);
        if (more > left) throw ArchiveError("it is longer than the archive says");
        left -= more;
        got += more;
        ended = more == 0;
    }
    found = static_cast<uint32_t>(crc32_z(found, reinterpret_cast<const Bytef*>(destination), got));
    if (!ended) return got;
    if (left > 0) throw ArchiveError("it is shorter than the archive says");
    if (found != wanted) throw ArchiveError("its checksum is wrong");
    return got;
}

}  // namespace vemrado::archives
