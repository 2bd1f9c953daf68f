#include "embedded_file.h"

#include <array>
#include <new>

namespace vemrado::tools {
namespace {

// Bytes as letters that no page takes for anything else; a whole number of groups of three.
std::string Base64(std::string_view bytes) {
    constexpr char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve(bytes.size() / 3 * 4 + 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0u);
        for (size_t k = 0; k < 4; ++k) text += k <= count ? letters[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

}  // namespace

EmbeddedFile::EmbeddedFile(const draw::ByteSink& byteSink, const std::string& attributes) : sink(byteSink) {
    constexpr int gzipWindow = 15 + 16;
    constexpr int level = 7;  // beyond it a map gets hardly smaller, and takes twice as long
    if (deflateInit2(&stream, level, Z_DEFLATED, gzipWindow, 9, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    sink("<script class=\"embedded-file\" type=\"application/octet-stream\" " + attributes + ">");
}

EmbeddedFile::~EmbeddedFile() {
    deflateEnd(&stream);
}

void EmbeddedFile::Add(std::string_view bytes) {
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    Pack(Z_NO_FLUSH);
    PutText(false);
}

void EmbeddedFile::Finish() {
    stream.avail_in = 0;
    Pack(Z_FINISH);
    PutText(true);
    sink("</script>");
}

void EmbeddedFile::Pack(int flush) {
    std::array<char, 1 << 16> room;
    do {
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        deflate(&stream, flush);
        packed.append(room.data(), room.size() - stream.avail_out);
    } while (stream.avail_out == 0);
}

void EmbeddedFile::PutText(bool last) {
    const size_t count = last ? packed.size() : packed.size() / 3 * 3;
    const std::string text = Base64(std::string_view(packed).substr(0, count));
    packed.erase(0, count);
    length += text.size();
    sink(text);
}

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

}  // namespace vemrado::tools
