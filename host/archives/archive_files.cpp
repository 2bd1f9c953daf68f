#include "archives/archive_files.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "archives/directory.h"
#include "archives/unpacked.h"
#include "client/system.h"

namespace vemrado::archives {

namespace {

namespace fs = std::filesystem;

enum class Kind { none, zip, tar, compressedTar };

constexpr size_t tarBlock = 512;

bool IsGzip(const std::string& start) {
    return start.size() > 2 && start.starts_with("\x1F\x8B");
}

std::string StartOf(ByteSource& source) {
    std::string start(tarBlock, '\0');
    size_t length = 0;
    while (length < start.size()) {
        const size_t got = source.Read(start.data() + length, start.size() - length);
        if (got == 0) break;
        length += got;
    }
    start.resize(length);
    return start;
}

std::unique_ptr<ByteSource> OpenCompressed(const std::string& path) {
    return std::make_unique<Unpacked>(std::make_unique<FilePart>(path, 0, FileLength(path)),
                                      Unpacked::Form::gzip);
}

Kind KindOf(const std::string& path) {
    FilePart file(path, 0, tarBlock);
    const std::string start = StartOf(file);
    if (start.starts_with("PK\x03\x04") || start.starts_with("PK\x05\x06")) return Kind::zip;
    if (IsTarHeader(start.data(), start.size())) return Kind::tar;
    if (!IsGzip(start)) return Kind::none;
    try {
        const std::string unpacked = StartOf(*OpenCompressed(path));
        return IsTarHeader(unpacked.data(), unpacked.size()) ? Kind::compressedTar : Kind::none;
    } catch (const ArchiveError&) {
        return Kind::none;
    }
}

bool IsRegularFile(const std::string& path) {
    std::error_code none;
    return fs::is_regular_file(client::NativePath(path), none);
}

bool NamedCompressed(const std::string& name) {
    const std::string end = name.substr(name.size() - std::min<size_t>(name.size(), 3));
    return end == ".gz" || end == ".GZ";
}

// An archive whose directory was read.
class Archive {
  public:
    explicit Archive(const std::string& file) : path(file), kind(KindOf(file)) {
        if (kind == Kind::zip) members = ZipDirectory(path);
        if (kind == Kind::tar) members = TarDirectory(*OpenWhole());
        if (kind == Kind::compressedTar) members = TarDirectory(*OpenWhole());
        for (size_t i = 0; i < members.size(); ++i) numbers.emplace(members[i].name, i);
    }

    const std::vector<Member>& Members() const { return members; }

    // Null when there is no such file in it.
    std::unique_ptr<ByteSource> Open(const std::string& name) {
        const auto found = numbers.find(name);
        if (found == numbers.end()) return nullptr;
        const Member& member = members[found->second];
        if (kind == Kind::zip) return OpenZipMember(path, member);
        if (kind == Kind::tar) return std::make_unique<FilePart>(path, member.place, member.size);
        return OpenFromStream(member);
    }

  private:
    // Bytes in memory.
    class Kept : public ByteSource {
      public:
        explicit Kept(std::shared_ptr<const std::string> content) : bytes(std::move(content)) {}
        size_t Read(char* destination, size_t count) override {
            const size_t got = bytes->copy(destination, count, at);
            at += got;
            return got;
        }

      private:
        std::shared_ptr<const std::string> bytes;
        size_t at = 0;
    };

    // No more of a stream than belongs to a file.
    class Part : public ByteSource {
      public:
        Part(std::unique_ptr<ByteSource> from, uint64_t length) : source(std::move(from)), left(length) {}
        size_t Read(char* destination, size_t count) override {
            const size_t got =
                source->Read(destination, static_cast<size_t>(std::min<uint64_t>(count, left)));
            if (got == 0 && left > 0) throw ArchiveError("its packed data end too early");
            left -= got;
            return got;
        }

      private:
        std::unique_ptr<ByteSource> source;
        uint64_t left;
    };

    std::unique_ptr<ByteSource> OpenWhole() const {
        if (kind == Kind::compressedTar) return OpenCompressed(path);
        return std::make_unique<FilePart>(path, 0, FileLength(path));
    }

    // A compressed tar archive has to be unpacked from its start: the stream waits behind the last file that
    // was asked for, and that file is kept, so that reading all in their order unpacks the archive once.
    std::unique_ptr<ByteSource> OpenFromStream(const Member& member) {
        constexpr uint64_t largestKept = uint64_t{64} << 20;
        if (kept != nullptr && keptPlace == member.place) return std::make_unique<Kept>(kept);
        if (stream == nullptr || streamPlace > member.place) {
            stream = OpenWhole();
            streamPlace = 0;
        }
        std::unique_ptr<ByteSource> opened = std::move(stream);
        if (!opened->Skip(member.place - streamPlace)) throw ArchiveError("its packed data end too early");
        if (member.size > largestKept) return std::make_unique<Part>(std::move(opened), member.size);
        auto content = std::make_shared<std::string>(static_cast<size_t>(member.size), '\0');
        if (!opened->ReadFully(content->data(), content->size()))
            throw ArchiveError("its packed data end too early");
        kept = content;
        keptPlace = member.place;
        stream = std::move(opened);
        streamPlace = member.place + member.size;
        return std::make_unique<Kept>(kept);
    }

    std::string path;
    Kind kind;
    std::vector<Member> members;
    std::unordered_map<std::string, size_t> numbers;  // of the members by name
    std::unique_ptr<ByteSource> stream;
    uint64_t streamPlace = 0;
    std::shared_ptr<const std::string> kept;
    uint64_t keptPlace = 0;
};

// The archives that were used last, and the lock around them.
class KnownArchives {
  public:
    std::vector<ArchivedFile> Files(const std::string& path) {
        const std::lock_guard guard(lock);
        std::vector<ArchivedFile> files;
        for (const Member& member : Of(path).Members()) files.push_back({member.name, member.size});
        return files;
    }

    std::unique_ptr<ByteSource> Open(const std::string& archive, const std::string& name) {
        const std::lock_guard guard(lock);
        return Of(archive).Open(name);
    }

  private:
    struct Known {
        fs::file_time_type changed;
        std::unique_ptr<Archive> archive;
    };

    Archive& Of(const std::string& path) {
        constexpr size_t most = 16;
        const fs::file_time_type changed = fs::last_write_time(client::NativePath(path));
        Known& place = archives[path];
        if (place.archive != nullptr && place.changed == changed) return *place.archive;
        auto fresh = std::make_unique<Archive>(path);
        if (archives.size() > most) archives.clear();
        Known& kept = archives[path];
        kept = {changed, std::move(fresh)};
        return *kept.archive;
    }

    std::mutex lock;
    std::map<std::string, Known> archives;
};

KnownArchives& Archives() {
    static KnownArchives archives;
    return archives;
}

thread_local std::string lastProblem;

// archive.zip/sheet.vkm: where the file's name ends and the name in it begins.
std::unique_ptr<ByteSource> OpenInArchive(const std::string& name) {
    for (size_t slash = name.find('/', 1); slash != std::string::npos; slash = name.find('/', slash + 1)) {
        const std::string archive = name.substr(0, slash);
        if (!IsRegularFile(archive)) continue;
        const std::string member = name.substr(slash + 1);
        auto opened = Archives().Open(archive, member);
        if (opened != nullptr && NamedCompressed(member))
            opened = std::make_unique<Unpacked>(std::move(opened), Unpacked::Form::gzip);
        return opened;
    }
    return nullptr;
}

std::unique_ptr<ByteSource> OpenByName(std::string name) {
    std::ranges::replace(name, '\\', '/');
    if (!IsRegularFile(name)) return OpenInArchive(name);
    if (!NamedCompressed(name)) return nullptr;
    FilePart file(name, 0, 3);
    return IsGzip(StartOf(file)) ? OpenCompressed(name) : nullptr;
}

void* Open(void*, const char* path) {
    try {
        return OpenByName(path).release();
    } catch (const std::exception& error) {
        lastProblem = error.what();
        return nullptr;
    }
}

int64_t Read(void* file, void* destination, size_t count) {
    try {
        return static_cast<int64_t>(
            static_cast<ByteSource*>(file)->Read(static_cast<char*>(destination), count));
    } catch (const std::exception& error) {
        lastProblem = error.what();
        return -1;
    }
}

int64_t UnknownLength(void*) {
    return 0;
}

void Close(void* file) {
    delete static_cast<ByteSource*>(file);
}

}  // namespace

bool IsArchive(const std::string& path) {
    try {
        return IsRegularFile(path) && KindOf(path) != Kind::none;
    } catch (const ArchiveError&) {
        return false;
    }
}

std::vector<ArchivedFile> FilesInArchive(const std::string& path) {
    return Archives().Files(path);
}

const FrameworkFileProvider& ArchiveFiles() {
    static const FrameworkFileProvider provider = {nullptr, Open, Read, UnknownLength, Close};
    return provider;
}

std::string TakeLastProblem() {
    return std::exchange(lastProblem, {});
}

}  // namespace vemrado::archives
