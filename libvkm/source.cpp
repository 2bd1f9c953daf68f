#include "source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "client/foreign_file.h"
#include "client/input_file.h"
#include "client/system.h"
#include "failure.h"
#include "options.h"

namespace vemrado::capi {
namespace {

[[maybe_unused]] const bool namesTold = (client::TakeNamesAsUtf8(), true);

// Gives the caller's memory or functions back.
class Release {
  public:
    Release(void (*releaseFunction)(void*), void* releaseContext)
        : function(releaseFunction), context(releaseContext) {}
    Release(const Release&) = delete;
    Release& operator=(const Release&) = delete;
    ~Release() {
        if (function != nullptr) function(context);
    }

  private:
    void (*function)(void*);
    void* context;
};

class DiskFile : public SourceFile {
  public:
    explicit DiskFile(const std::string& path) : file(client::OpenForReading(path)) {
        if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);  // readers ask for blocks
    }
    ~DiskFile() override {
        if (file != nullptr) std::fclose(file);
    }
    bool Usable() const { return file != nullptr; }
    int64_t Read(void* destination, size_t length) override {
        const size_t got = std::fread(destination, 1, length, file);
        return got == 0 && std::ferror(file) != 0 ? -1 : static_cast<int64_t>(got);
    }
    int64_t Length() override { return client::LengthOfFile(file); }

  private:
    std::FILE* file;
};

class OnDisk : public Source {
  public:
    explicit OnDisk(const std::string& path) : Source(path) {}
    std::unique_ptr<SourceFile> Open() override {
        if (client::KindOfFile(Name()) == client::FileKind::directory) return nullptr;
        auto file = std::make_unique<DiskFile>(Name());
        return file->Usable() ? std::move(file) : nullptr;
    }
};

class MemoryFile : public SourceFile {
  public:
    MemoryFile(const char* data, size_t size) : next(data), left(size), all(size) {}
    int64_t Read(void* destination, size_t length) override {
        const size_t given = std::min(length, left);
        std::copy_n(next, given, static_cast<char*>(destination));
        next += given;
        left -= given;
        return static_cast<int64_t>(given);
    }
    int64_t Length() override { return static_cast<int64_t>(all); }

  private:
    const char* next;
    size_t left;
    size_t all;
};

class InMemory : public Source {
  public:
    InMemory(const void* bytes, size_t count, const char* shownName, std::unique_ptr<Release> whenDone)
        : Source(shownName),
          data(static_cast<const char*>(bytes)),
          length(count),
          release(std::move(whenDone)) {}
    std::unique_ptr<SourceFile> Open() override { return std::make_unique<MemoryFile>(data, length); }

  private:
    const char* data;
    size_t length;
    std::unique_ptr<Release> release;
};

class CallersFile : public SourceFile {
  public:
    CallersFile(const vkm_source& functions, void* opened) : source(functions), file(opened) {}
    ~CallersFile() override {
        if (source.close != nullptr) source.close(file);
    }
    int64_t Read(void* destination, size_t length) override {
        const int64_t got = source.read(file, destination, length);
        return got > static_cast<int64_t>(length) ? -1 : got;
    }
    int64_t Length() override {
        return source.length != nullptr ? std::max<int64_t>(source.length(file), 0) : 0;
    }

  private:
    const vkm_source& source;
    void* file;
};

class OfCaller : public Source {
  public:
    OfCaller(const vkm_source& functions, const char* shownName, std::unique_ptr<Release> whenDone)
        : Source(shownName), source(functions), release(std::move(whenDone)) {}
    std::unique_ptr<SourceFile> Open() override {
        void* file = source.open(source.context);
        if (file == nullptr) throw Failure(VKM_ERROR_OPEN, "its source gives no file", Name());
        return std::make_unique<CallersFile>(source, file);
    }

  private:
    vkm_source source;
    std::unique_ptr<Release> release;
};

// A file whose start has been read already.
class LookedAtFile : public SourceFile {
  public:
    LookedAtFile(std::unique_ptr<SourceFile> opened, std::string bytes, size_t skipped, ReadProgress* told)
        : file(std::move(opened)), start(std::move(bytes)), used(skipped), before(skipped), progress(told) {
        if (progress != nullptr) *progress = {0, Length()};
    }
    int64_t Read(void* destination, size_t length) override {
        const int64_t given = used < start.size() ? ReadStart(static_cast<char*>(destination), length)
                                                  : file->Read(destination, length);
        if (progress != nullptr && given > 0) progress->done += given;
        return given;
    }
    int64_t Length() override { return std::max<int64_t>(file->Length() - static_cast<int64_t>(before), 0); }

  private:
    // And what follows it, so that the next reads are of whole pages of the file again.
    int64_t ReadStart(char* destination, size_t length) {
        const size_t given = std::min(length, start.size() - used);
        std::copy_n(start.data() + used, given, destination);
        used += given;
        const int64_t more = given < length ? file->Read(destination + given, length - given) : 0;
        return static_cast<int64_t>(given) + std::max<int64_t>(more, 0);  // a failure comes again
    }

    std::unique_ptr<SourceFile> file;
    std::string start;
    size_t used;
    size_t before;
    ReadProgress* progress;
};

std::string StartOf(SourceFile& file) {
    std::string start(client::lookedAtBytes, '\0');
    size_t length = 0;
    while (length < start.size()) {
        const int64_t got = file.Read(start.data() + length, start.size() - length);
        if (got <= 0) break;  // a failure comes again
        length += static_cast<size_t>(got);
    }
    start.resize(length);
    return start;
}

}  // namespace

std::shared_ptr<Source> DiskSource(const std::string& path) {
    return std::make_shared<OnDisk>(path);
}

std::shared_ptr<Source> MemorySource(const void* data, size_t length, const char* name,
                                     void (*release)(void*), void* context) {
    auto whenDone = std::make_unique<Release>(release, context);
    Require(data != nullptr || length == 0, "data: null, but a length");
    return std::make_shared<InMemory>(data, length, name != nullptr ? name : "memory", std::move(whenDone));
}

std::shared_ptr<Source> CallersSource(const vkm_source& source, const char* name) {
    auto whenDone = std::make_unique<Release>(source.release, source.context);
    Require(source.open != nullptr && source.read != nullptr, "a source has at least open and read");
    return std::make_shared<OfCaller>(source, name != nullptr ? name : "source", std::move(whenDone));
}

std::unique_ptr<SourceFile> OpenTable([[maybe_unused]] const char* path) {
#if defined(_WIN32)
    auto file =
        std::make_unique<DiskFile>(path);  // its names are UTF-8 whatever the code page of the process
    if (file->Usable()) return file;
#endif
    return nullptr;
}

std::unique_ptr<SourceFile> OpenAsMap(Source& source, bool* markSkipped, ReadProgress* progress) {
    std::unique_ptr<SourceFile> file = source.Open();
    if (!file) return nullptr;
    std::string start = StartOf(*file);
    const std::string_view foreign = client::ForeignKind(start);
    if (!foreign.empty()) throw client::ForeignFile(client::ForeignFileMessage(source.Name(), foreign));
    const size_t mark = start.starts_with(client::byteOrderMark) ? client::byteOrderMark.size() : 0;
    if (markSkipped != nullptr) *markSkipped = mark != 0;
    return std::make_unique<LookedAtFile>(std::move(file), std::move(start), mark, progress);
}

std::unique_ptr<SourceFile> OpenOrFail(Source& source, bool* markSkipped, ReadProgress& progress) {
    errno = 0;
    std::unique_ptr<SourceFile> file = OpenAsMap(source, markSkipped, &progress);
    if (file) return file;
    const int reason = errno != 0                                                         ? errno
                       : client::KindOfFile(source.Name()) == client::FileKind::directory ? EISDIR
                                                                                          : ENOENT;
    throw Failure(VKM_ERROR_OPEN, std::generic_category().message(reason), source.Name());
}

std::function<size_t(char*, size_t)> BytesOf(SourceFile& file, const Source& source, const Options& options,
                                             const ReadProgress& progress) {
    return [&](char* to, size_t count) {
        const int64_t got = file.Read(to, count);
        if (got < 0) throw Failure(VKM_ERROR_READ, "reading failed", source.Name());
        TellProgress(options, progress.Part(), source.Name());
        return static_cast<size_t>(got);
    };
}

}  // namespace vemrado::capi
