// Reads the elements of one file or of several, one after the other.

#pragma once

#include <cpl_error.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batch_writer.h"
#include "client/text_encoding.h"
#include "elements.h"
#include "summary.h"

namespace vemrado::gdal {

class ModuleSession;

// What readers found in a file, so that it is reported once.
struct FileState {
    bool truncated = false;            // no closing record: its last element is lost
    bool leftOut = false;              // points without a place were left out
    bool encodingTold = false;         // that texts look like another encoding
    bool checked = false;              // its start was looked at
    bool unusable = false;             // it could not be opened, and the others are read all the same
    bool damageTold = false;           // that it could not be read to its end, in the same case
    std::optional<FileTotals> totals;  // once it was counted
};

// What the layers of a dataset read, and how.
struct Source {
    std::vector<std::string> files;
    std::vector<std::string> names;  // the same as people know them, for messages and the source field
    std::vector<FileState> states;   // for each file
    client::Encoding encoding = client::Encoding::windows1250;
    int axisOrientation = 128;
    map::AngleUnit angleUnit = map::AngleUnit::gon;  // of rotations in the file
    bool splitByCode = true;                         // a line whose code changes becomes one for each code
    bool withSourceField = false;
    bool keepGoing = false;  // files that cannot be read are left out, with a warning each

    CPLErr Severity() const { return keepGoing ? CE_Warning : CE_Failure; }

    std::function<bool()> stopRequested;  // asked before each batch; true ends the reading as failed
};

// The header of a file.
struct Header {
    double mapScale = 1000.0;
    bool relative = false;
    std::string date;   // second field of the D record, in UTF-8 as the title
    std::string title;  // the comments, one a line
};

// complete: all files were read to their ends.
enum class ReadState { reading, complete, failed };

class ElementReader {
  public:
    // Tells by its number whether a file need not be read.
    using Skips = std::function<bool(size_t)>;

    // The source must outlive the reader.
    ElementReader(Source& source, Content content, Skips skips = {});
    ElementReader(const ElementReader&) = delete;
    ElementReader& operator=(const ElementReader&) = delete;
    ~ElementReader();

    // Puts the next elements into the batch; it is empty only at the end of the last file. Never throws but
    // for memory: a failure of the module ends the reading and is reported to GDAL with file and line, as is
    // the loss of the last element of a file without its closing record.
    void Fill(Batch& batch);

    ReadState State() const { return state; }
    // Whether it passes over files at all, and over this one.
    bool SkipsFiles() const { return static_cast<bool>(skips); }
    bool IsSkipped(size_t file) const { return skips && skips(file); }
    // Of the file that was opened last.
    const Header& LastHeader() const { return header; }

  private:
    struct OpenedFile {
        explicit OpenedFile(const Source& source) : reading(importer, source.encoding, source.angleUnit) {}

        gdal::Header Header(client::Encoding encoding) const;

        map::Importer importer;
        map::Reading reading;
    };

    static std::unique_ptr<OpenedFile> Open(ModuleSession& session, const Source& source, size_t file);
    friend std::optional<Header> ReadHeader(const Source& source, size_t file);

    bool OpenNext(ModuleSession& session);
    void EndFile(ModuleSession& session);
    void ReadElements(ModuleSession& session, Batch& batch);
    void LeaveOut(ModuleSession& session);

    Source& source;
    BatchWriter writer;
    Skips skips;
    std::unique_ptr<OpenedFile> opened;  // null between files
    Header header;
    size_t nextFile = 0;
    ReadState state = ReadState::reading;
};

// Reads the header of a file; none when it cannot be opened, which is reported to GDAL as a failure.
std::optional<Header> ReadHeader(const Source& source, size_t file);

}  // namespace vemrado::gdal
