#include "platform/provided_file.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "framework/framework.h"
#include "platform/native.h"

namespace vemrado::platform {

// The path with its terminator stands behind it in the same block.
struct ProvidedFile {
    FrameworkFileProvider provider;  // the one that opened the file, whatever is set later
    void* file;
    int64_t position;
    int64_t end;  // found by a seek that led beyond it; -1 until then

    const char* Path() const { return reinterpret_cast<const char*>(this + 1); }
};

namespace {

// Reads on to a target; true when it is reached or the file ends before it. The position goes along, up to
// the end.
bool SkipTo(const FrameworkFileProvider& provider, void* file, int64_t& position, int64_t target) {
    char passed[4096];
    while (position < target) {
        const auto wanted = static_cast<size_t>(std::min<int64_t>(target - position, sizeof passed));
        const int64_t count = provider.read(file, passed, wanted);
        if (count < 0) return false;
        if (count == 0) return true;
        position += count;
    }
    return true;
}

// The end when the provider does not know the length: what is left is counted.
bool SkipToEnd(ProvidedFile& file) {
    char passed[4096];
    while (true) {
        const int64_t count = file.provider.read(file.file, passed, sizeof passed);
        if (count <= 0) return count == 0;
        file.position += count;
    }
}

// Puts a fresh file of the same path in place of the one that has been read too far.
bool GoBack(ProvidedFile& file, int64_t target) {
    void* again = file.provider.open(file.provider.context, file.Path());
    if (again == nullptr) return false;
    int64_t position = 0;
    if (!SkipTo(file.provider, again, position, target)) {
        file.provider.close(again);
        return false;
    }
    file.provider.close(file.file);
    file.file = again;
    file.position = position;
    return true;
}

bool MoveTo(ProvidedFile& file, int64_t target) {
    const bool moved = target < file.position ? GoBack(file, target)
                                              : SkipTo(file.provider, file.file, file.position, target);
    if (!moved) return false;
    if (file.position < target && file.end < 0) file.end = file.position;
    file.position = target;
    return true;
}

// Where an offset from an origin leads; below 0: nowhere.
int64_t Target(ProvidedFile& file, int64_t offset, Origin origin) {
    if (origin == Origin::start) return offset;
    if (origin == Origin::current) return file.position + offset;
    int64_t length = file.provider.length(file.file);
    if (length == 0 && file.end < 0) {
        if (!SkipToEnd(file)) return -1;
        file.end = file.position;
    }
    if (length == 0) length = file.end;
    return length < 0 ? -1 : length + offset;
}

}  // namespace

ProvidedFile* ProvidedOpen(const char* path, int& error) {
    error = 0;
    const FrameworkFileProvider* provider = FrameworkGetFileProvider();
    if (provider == nullptr) return nullptr;
    const size_t pathSize = std::strlen(path) + 1;
    void* block = ReallocateOnHeap(nullptr, sizeof(ProvidedFile) + pathSize);
    if (block == nullptr) {
        error = memoryError;
        return nullptr;
    }
    void* opened = provider->open(provider->context, path);
    if (opened == nullptr) {
        FreeOnHeap(block);
        return nullptr;
    }
    auto* file = new (block) ProvidedFile{*provider, opened, 0, -1};
    std::memcpy(file + 1, path, pathSize);
    return file;
}

void ProvidedClose(ProvidedFile* file) {
    file->provider.close(file->file);
    FreeOnHeap(file);
}

int64_t ProvidedRead(ProvidedFile* file, void* destination, size_t count, int& error) {
    const int64_t result = file->provider.read(file->file, destination, count);
    if (result < 0) {
        error = readError;
        return -1;
    }
    file->position += result;
    return result;
}

int64_t ProvidedSeek(ProvidedFile* file, int64_t offset, Origin origin, int& error) {
    const int64_t target = Target(*file, offset, origin);
    if (target < 0 || !MoveTo(*file, target)) {
        error = seekError;
        return -1;
    }
    return target;
}

int64_t ProvidedLength(ProvidedFile* file, int& error) {
    const int64_t length = file->provider.length(file->file);
    if (length < 0) {
        error = readError;
        return -1;
    }
    return length;
}

}  // namespace vemrado::platform
