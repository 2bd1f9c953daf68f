// One map on its way into an output.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "element_reader.h"
#include "summary.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

// What is known of a sheet once it was read.
struct SheetFacts {
    double mapScale = 1000.0;
    bool complete = false;
    FileTotals layers;

    OGREnvelope Extent() const { return ExtentOf(layers); }
};

// By which a changed file is told from one that stayed.
struct FileStamp {
    int64_t size = 0;      // bytes, unpacked
    int64_t modified = 0;  // seconds since 1970, of the file or the archive that it lies in; 0: not known
    std::string hash;      // of its bytes; empty: not worked out yet

    bool SameTime(const FileStamp& other) const {
        return size == other.size && modified == other.modified && modified != 0;
    }
};
FileStamp StampOf(const std::string& file);
std::string HashOf(const std::string& file);

class Sheet {
  public:
    Sheet(const std::string& file, const std::string& name, const OpenSettings& settings,
          std::function<bool()> stopRequested);

    // Reads it to its end. False when that fails, which is reported to GDAL. Small sheets are kept in memory,
    // so that they are read once.
    bool Read();
    const SheetFacts& Facts() const { return facts; }
    bool InMemory() const { return allKept; }
    const std::string& Name() const { return source.names.front(); }
    const std::string& File() const { return source.files.front(); }
    const gdal::Header& Header() const { return header; }

    // Its elements, a batch at a time. False when visit says so or the sheet cannot be read again.
    bool ForEach(const std::function<bool(const Batch&)>& visit);
    // The same without Read before.
    bool ReadAlone(const std::function<bool(const Batch&)>& visit);

  private:
    bool LookAtStart();
    bool ReadThrough(const std::function<bool(const Batch&)>& visit);

    Source source;
    gdal::Header header;
    bool guessEncoding = false;
    SheetFacts facts;
    std::vector<Batch> kept;
    bool allKept = true;
};

}  // namespace vemrado::gdal
