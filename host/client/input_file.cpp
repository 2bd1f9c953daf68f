#include "client/input_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

#include "client/file_providers.h"
#include "client/foreign_file.h"
#include "client/standard_input.h"
#include "client/stop_request.h"
#include "client/system.h"
#include "framework/framework.h"

namespace vemrado::client {
namespace {

// Standard input or a file, whose first bytes can be looked at before they are read.
class Stream {
  public:
    explicit Stream(const std::string& name) : fromStandardInput(name == standardInputName) {
        if (fromStandardInput) return;
        provider = FrameworkGetFileProvider();
        if (provider != nullptr) provided = provider->open(provider->context, name.c_str());
        if (provided == nullptr) file = File(std::fopen(name.c_str(), "rb"), &std::fclose);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() {
        if (provided != nullptr) provider->close(provided);
    }

    bool Usable() const { return fromStandardInput || provided != nullptr || file; }
    // A file of a provider's: it can be opened again, and its length on disk says nothing.
    bool Provided() const { return provided != nullptr; }

    // Reads on until the start tells what it is. A slow writer is not waited for longer than that.
    std::string_view Start(size_t wanted) {
        const auto undecided = [&] {
            return start.size() < lookedAtBytes && (start.empty() || !ForeignKind(start).empty());
        };
        while (start.size() < wanted || undecided()) {
            const size_t before = start.size();
            constexpr size_t step = 4096;
            start.resize(before + step);
            const int64_t got = ReadSource(start.data() + before, step);
            start.resize(before + static_cast<size_t>(std::max<int64_t>(got, 0)));
            if (got <= 0) break;
        }
        return start;
    }

    void Skip(size_t count) { used = count; }

    int64_t Read(void* destination, size_t count) {
        if (used == start.size()) return ReadSource(destination, count);
        const size_t given = std::min(count, start.size() - used);
        std::copy_n(start.data() + used, given, static_cast<char*>(destination));
        used += given;
        return static_cast<int64_t>(given);
    }

    int64_t length = 0;  // bytes that Read gives; 0 when not known

  private:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    int64_t ReadSource(void* destination, size_t count) {
        if (fromStandardInput) return ReadStandardInput(destination, count);
        if (provided != nullptr) return provider->read(provided, destination, count);
        const size_t got = std::fread(destination, 1, count, file.get());
        if (got == 0 && std::ferror(file.get()) != 0) return StopRequested() ? 0 : -1;
        return static_cast<int64_t>(got);
    }

    File file{nullptr, &std::fclose};
    const FrameworkFileProvider* provider = nullptr;
    void* provided = nullptr;  // in place of the file
    bool fromStandardInput;
    std::string start;
    size_t used = 0;
};

// Streams that wait for the module's open.
struct Offer {
    std::string name;
    std::unique_ptr<Stream> stream;
};
std::mutex offersLock;
std::vector<Offer> offers;

void* OpenOffered(void*, const char* path) {
    const std::lock_guard hold(offersLock);
    const auto found = std::ranges::find(offers, path, &Offer::name);
    if (found == offers.end()) return nullptr;
    Stream* stream = found->stream.release();
    offers.erase(found);
    return stream;
}

// The stream of a name that still waits; null when there is none.
std::unique_ptr<Stream> TakeBack(const std::string& name) {
    const std::lock_guard hold(offersLock);
    const auto found = std::ranges::find(offers, name, &Offer::name);
    if (found == offers.end()) return nullptr;
    std::unique_ptr<Stream> stream = std::move(found->stream);
    offers.erase(found);
    return stream;
}

void OfferStream(const std::string& name, std::unique_ptr<Stream> stream) {
    static const FrameworkFileProvider provider = {
        nullptr, OpenOffered,
        [](void* opened, void* to, size_t count) { return static_cast<Stream*>(opened)->Read(to, count); },
        [](void* opened) { return static_cast<Stream*>(opened)->length; },
        [](void* opened) { delete static_cast<Stream*>(opened); }};
    const std::lock_guard hold(offersLock);
    offers.push_back({name, std::move(stream)});
    AddFileProvider(provider);
}

}  // namespace

InputFile LookAtInput(const std::string& name, size_t wanted) {
    InputFile input;
    input.name = ShownName(name.c_str());
    const FileKind kind = name == standardInputName ? FileKind::other : KindOfFile(name);
    if (kind == FileKind::directory) return input;
    std::unique_ptr<Stream> stream = TakeBack(input.name);
    if (!stream) stream = std::make_unique<Stream>(name);
    if (!stream->Usable()) return input;
    const bool opensAgain = kind == FileKind::regular || stream->Provided();

    input.start = stream->Start(wanted);
    const std::string_view start = input.start;
    const std::string_view foreign = ForeignKind(start);
    if (!foreign.empty()) throw ForeignFile(ForeignFileMessage(SystemTextToUtf8(input.name), foreign));
    input.markSkipped = start.starts_with(byteOrderMark);
    if (opensAgain && !input.markSkipped) return input;
    if (input.markSkipped) stream->Skip(byteOrderMark.size());
    if (kind == FileKind::regular && !stream->Provided()) {
        std::error_code unknown;
        const std::uintmax_t size = std::filesystem::file_size(NativePath(name), unknown);
        if (!unknown) stream->length = static_cast<int64_t>(size - byteOrderMark.size());
    }
    OfferStream(input.name, std::move(stream));
    return input;
}

std::string SkippedMarkMessage(const std::string& shownName) {
    return shownName + ": the UTF-8 byte order mark before its first record was skipped";
}

}  // namespace vemrado::client
