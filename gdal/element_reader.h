// Reads the elements of one file or of several, one after the other.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/text_encoding.h"
#include "elements.h"
#include "vemrado/vkm_details.h"

namespace vemrado::gdal {

class ModuleSession;

// What readers found in a file, so that it is reported once.
struct FileState {
    bool truncated = false;     // no closing record: its last element is lost
    bool leftOut = false;       // points without a place were left out
    bool encodingTold = false;  // that texts look like another encoding
    bool failed = false;        // it could not be opened or read to its end
};

// What the layers of a dataset read, and how.
struct Source {
    std::vector<std::string> files;
    std::vector<std::string> names;  // the same as people know them, for messages and the source field
    std::vector<FileState> states;   // for each file
    client::Encoding encoding = client::Encoding::windows1250;
    int axisOrientation = 128;
    double gonsOfAngle = 1.0;  // gons that the file's unit of rotations has
    bool withSourceField = false;
    std::function<bool()> stopRequested;  // asked before each batch; true ends the reading as failed
};

// The header of a file.
struct Header {
    double mapScale = 1000.0;
    bool relative = false;
};

// complete: all files were read to their ends.
enum class ReadState { reading, complete, failed };

class ElementReader {
  public:
    // The source must outlive the reader.
    ElementReader(Source& source, Content content);
    ElementReader(const ElementReader&) = delete;
    ElementReader& operator=(const ElementReader&) = delete;
    ~ElementReader();

    // Puts the next elements into the batch; it is empty only at the end of the last file. Never throws but
    // for memory: a failure of the module ends the reading and is reported to GDAL with file and line, as is
    // the loss of the last element of a file without its closing record.
    void Fill(Batch& batch);

    ReadState State() const { return state; }
    // Of the file that was opened last.
    double MapScale() const { return mapScale; }

  private:
    struct Destroy {
        void operator()(CVKMDetails* vkm) const { CVKMInterface::DestroyVKMInterface(vkm); }
    };

    bool Wants(Content part) const {
        return (static_cast<unsigned>(content) & static_cast<unsigned>(part)) != 0;
    }
    bool OpenFile(ModuleSession& session);
    void Fail();
    void EndFile(ModuleSession& session);
    void ReadElements(ModuleSession& session, Batch& batch);
    void CopyLine(ModuleSession& session, Batch& batch);
    void CopyVertex(ModuleSession& session, int index, LineRecord& line, Batch& batch);
    void CopyText(ModuleSession& session, Batch& batch);
    void LeaveOut(ModuleSession& session);
    void AddPoints(Batch& batch, const LineRecord& line);

    Source& source;
    Content content;
    client::TextDecoder decoder;
    std::string decoded;
    std::unique_ptr<CVKMDetails, Destroy> importer;  // null between files
    double mapScale = 1000.0;
    size_t nextFile = 0;
    GIntBig linesSeen = 0;   // with a stroke: the identifier of the last one
    bool gapBefore = false;  // the vertex before in the line was left out
    ReadState state = ReadState::reading;
};

// Reads the header of a file; none when it cannot be opened, which is reported to GDAL as a failure.
std::optional<Header> ReadHeader(const Source& source, size_t file);

}  // namespace vemrado::gdal
