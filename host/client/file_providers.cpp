#include "client/file_providers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <span>

namespace vemrado::client {
namespace {

// Only ever added to, so that it is read without a lock.
std::array<const FrameworkFileProvider*, 8> providers;
std::atomic<size_t> providerCount = 0;
std::mutex addLock;

std::span<const FrameworkFileProvider* const> Providers() {
    return {providers.data(), providerCount};
}

struct ProvidedFile {
    const FrameworkFileProvider& provider;
    void* file;
};

ProvidedFile& FileOf(void* opened) {
    return *static_cast<ProvidedFile*>(opened);
}

void* Open(void*, const char* path) {
    for (const FrameworkFileProvider* provider : Providers()) {
        if (void* file = provider->open(provider->context, path)) return new ProvidedFile{*provider, file};
    }
    return nullptr;
}

int64_t Read(void* opened, void* destination, size_t count) {
    return FileOf(opened).provider.read(FileOf(opened).file, destination, count);
}

int64_t Length(void* opened) {
    return FileOf(opened).provider.length(FileOf(opened).file);
}

void Close(void* opened) {
    const std::unique_ptr<ProvidedFile> owned(&FileOf(opened));
    owned->provider.close(owned->file);
}

}  // namespace

void AddFileProvider(const FrameworkFileProvider& provider) {
    const std::lock_guard hold(addLock);
    if (std::ranges::find(Providers(), &provider) != Providers().end()) return;
    providers.at(providerCount) = &provider;
    ++providerCount;
    static const FrameworkFileProvider all = {nullptr, Open, Read, Length, Close};
    FrameworkSetFileProvider(&all);
}

}  // namespace vemrado::client
