#include "source.h"

#include <emscripten.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "client/file_providers.h"
#include "client/text_encoding.h"
#include "framework/framework.h"

// Bytes copied to the destination, 0 at the end; -1 when the page could not read.
EM_JS(int, PageRead, (int file, double offset, void* destination, int count),
      { return Module.readFile(file, offset, destination, count); });

namespace vemrado::web {
namespace {

constexpr size_t mostAtOnce = 1 << 24;

struct Offer {
    std::string name;
    int file = 0;
    double length = 0;
};
Offer offer;

struct OpenFile {
    int file;
    double length;
    double offset;
};

void* Open(void*, const char* path) {
    if (offer.file == 0 || offer.name != path) return nullptr;
    return new (std::nothrow) OpenFile{offer.file, offer.length, 0};
}

int64_t Read(void* opened, void* destination, size_t count) {
    auto& file = *static_cast<OpenFile*>(opened);
    const int got =
        PageRead(file.file, file.offset, destination, static_cast<int>(std::min(count, mostAtOnce)));
    if (got > 0) file.offset += got;
    return got;
}

int64_t Length(void* opened) {
    return static_cast<int64_t>(static_cast<OpenFile*>(opened)->length);
}

void Close(void* opened) {
    delete static_cast<OpenFile*>(opened);
}

}  // namespace

size_t ReadPageFile(int file, double offset, void* destination, size_t count) {
    const int got = PageRead(file, offset, destination, static_cast<int>(std::min(count, mostAtOnce)));
    if (got < 0) throw std::runtime_error("the file cannot be read any more");
    return static_cast<size_t>(got);
}

OfferedFile::OfferedFile(std::string name, int file, double length) {
    offer = {std::move(name), file, length};
    static const FrameworkFileProvider provider{nullptr, Open, Read, Length, Close};
    client::AddFileProvider(provider);
    FrameworkSetMessageBoxHandler(OnBox, this);
}

OfferedFile::~OfferedFile() {
    offer = {};
    FrameworkSetMessageBoxHandler(nullptr, nullptr);
}

int OfferedFile::OnBox(void* context, const char* text, unsigned int) {
    static_cast<OfferedFile*>(context)->boxes.push_back(client::MessageToUtf8(text));
    return 1;
}

}  // namespace vemrado::web
