// Where a map comes from: a file on the disk, memory, or read functions of the caller's. Every reader of it
// opens it for itself.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "framework/framework.h"
#include "vemrado/vkm.h"

namespace vemrado::capi {

struct Options;

// One opening of a source.
class SourceFile {
  public:
    SourceFile() = default;
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;
    virtual ~SourceFile() = default;

    virtual int64_t Read(void* destination, size_t length) = 0;  // 0 at the end, -1 when it fails
    virtual int64_t Length() = 0;                                // 0: not known
};

class Source {
  public:
    explicit Source(std::string sourceName) : name(std::move(sourceName)) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // As it is called in messages; the module opens it by this name.
    const std::string& Name() const { return name; }

    // Null: it is left to the module to open it, or to say why it cannot be.
    virtual std::unique_ptr<SourceFile> Open() = 0;

  private:
    std::string name;
};

std::shared_ptr<Source> DiskSource(const std::string& path);
// Release is called when the last user has gone; by the function itself when it throws.
std::shared_ptr<Source> MemorySource(const void* data, size_t length, const char* name,
                                     void (*release)(void*), void* context);
std::shared_ptr<Source> CallersSource(const vkm_source& source, const char* name);

// How far a map has been read.
struct ReadProgress {
    int64_t done = 0;
    int64_t length = 0;  // 0: not known

    // Of the whole, 0 to 1; below 0: not known.
    double Part() const { return length > 0 ? static_cast<double>(done) / static_cast<double>(length) : -1; }
};

// Opens a source after a look at its start: what is no map is told by client::ForeignFile, a byte order mark
// is passed over. Null as for Source::Open.
std::unique_ptr<SourceFile> OpenAsMap(Source& source, bool* markSkipped = nullptr,
                                      ReadProgress* progress = nullptr);

// The same for readers that do not go through the module: throws Failure when it cannot be opened.
std::unique_ptr<SourceFile> OpenOrFail(Source& source, bool* markSkipped, ReadProgress& progress);

// Its bytes for the checked reading, with progress told to the caller; throws Failure when reading fails or
// the caller stops it. All outlive it.
std::function<size_t(char*, size_t)> BytesOf(SourceFile& file, const Source& source, const Options& options,
                                             const ReadProgress& progress);

// A table of the symbology where the module's own way to files does not take every name; null: it does.
std::unique_ptr<SourceFile> OpenTable(const char* path);

}  // namespace vemrado::capi
