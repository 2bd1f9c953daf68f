#include "map_page.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "client/atomic_output.h"
#include "client/system.h"
#include "program.h"

namespace vemrado::tools {
namespace {

std::string ParentOf(const std::string& path) {
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

// The page without a map: installed beside the programs, or in the build tree of the preset web.
std::string FindPage() {
    const std::string folder = ParentOf(ParentOf(client::ProgramPath()));
    for (const std::string& page :
         {folder + "/share/vemrado/vemrado.html", ParentOf(folder) + "/web/vemrado.html"}) {
        if (client::KindOfFile(page) == client::FileKind::regular) return page;
    }
    throw Failure(exitInput,
                  "the page for maps in the browser, vemrado.html, is not installed beside this program");
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(client::NativePath(path), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad()) {
        throw Failure(exitInput, client::SystemTextToUtf8(path) + ": the file cannot be read");
    }
    return bytes;
}

std::string Gzip(const std::string& bytes) {
    constexpr int gzipWindow = 15 + 16;
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipWindow, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    std::string packed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

std::string Base64(const std::string& bytes) {
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

}  // namespace

bool IsMapPage(const std::string& fileName) {
    return fileName.ends_with(".html") || fileName.ends_with(".HTML");
}

void WriteMapPage(const std::string& mapFile, const std::string& pageFile) {
    constexpr size_t largest = size_t{1} << 30;  // a browser holds no longer text
    const std::string map = ReadFile(mapFile);
    const std::string shownName = client::SystemTextToUtf8(mapFile);
    if (map.size() > largest)
        throw Failure(exitInput, shownName + ": a map of more than 1 GB does not go into a page");
    std::string page = ReadFile(FindPage());
    const size_t script = page.rfind("<script>");
    if (script == std::string::npos) throw std::runtime_error("vemrado.html is not the page of this version");
    const std::string name = shownName.substr(shownName.find_last_of("/\\") + 1);
    client::AtomicOutput output(pageFile);
    output.Write({page.data(), script});
    output.Write("<script id=\"embedded-map\" type=\"application/octet-stream\" data-name=\"" +
                 Escaped(name) + "\">");
    output.Write(Base64(Gzip(map)));
    output.Write("</script>");
    output.Write(std::string_view(page).substr(script));
    output.Commit();
}

}  // namespace vemrado::tools
