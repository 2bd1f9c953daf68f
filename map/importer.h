// The elements of a file one by one, as they stand in it: nothing is put together, decoded or left out.
// Reading (map/reading.h) stands on this; listings of a file's own content take it as it is.

#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "map/geometry.h"
#include "vemrado/vkm_details.h"

namespace vemrado::map {

struct OpenOptions {
    std::string fileName;   // client::standardInputName: standard input
    std::string layerName;  // not empty: replaces the file's layers
    int axisOrientation = 128;
    bool symbology = false;     // load it
    bool symbols = true;        // with the drawings of symbols
    std::string dataDirectory;  // that holds VKMSym; empty: where the framework or the registry says
    bool lookAtFile = true;     // first, by client/input_file.h; false where a file provider has done so
};

struct RawLine {
    int layer = 0;
    std::string_view layerName;
    int fileLine = 0;  // on which it begins, from 1
    std::span<const VkmElement> elements;
};

struct RawText {
    int layer = 0;
    std::string_view layerName;
    int fileLine = 0;
    std::string_view text;  // bytes of the file
    Point point;
    int code = 0;  // K value; 0: none
    int valueD = 0;
    int valueF = 0;
    double scaledH = 0;  // H value times map scale / 1000
    double valueU = 0;
};

enum class ElementKind { none, line, text };  // the module's 0, 1 and 2

class Importer {
  public:
    // Throws std::bad_alloc when there is no memory for an importer.
    Importer();
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;
    ~Importer();

    // False when the file could not be opened; a message box has said why. Throws client::ForeignFile for
    // what is no map.
    bool Open(const OpenOptions& options);
    void Close() { details->Close(); }

    // Reads the next element, which Line() or Text() then copies. None at the end of the data, or when the
    // user asked to stop. A read error leaves it as CFileException. Memory is used again: nothing is
    // allocated once the longest line was met.
    ElementKind Next() {
        if (++sinceAsked == elementsBetweenQuestions && StopsHere()) return ElementKind::none;
        copied = false;
        return static_cast<ElementKind>(details->ReadNext());
    }
    // Of the element just read; valid until the next call of Next.
    const RawLine& Line();
    const RawText& Text();

    int AxisOrientation() const { return axisOrientation; }
    // A byte order mark stood before the first record of the file that was opened last.
    bool MarkSkipped() const { return markSkipped; }
    // True once the closing record was read.
    bool Complete() const { return details->IsComplete() != 0; }
    bool Relative() const { return details->GetRelativeCoordinates() != 0; }
    double Scale() const { return details->GetScale(); }
    // Lines of the file read so far.
    int LineCount() const { return details->GetLineCount() - linesBefore; }

    // Of the element just read.
    int Layer() const {
        int layer = 0;
        details->GetLayer(&layer);
        return layer;
    }

    // For the header and the symbology.
    CVKMDetails& Details() const { return *details; }

  private:
    // After so many the user's wish to stop is looked at.
    static constexpr int elementsBetweenQuestions = 16;

    bool StopsHere();
    void CopyLine();
    void CopyText();

    CVKMDetails* details;
    bool copied = false;  // the element just read
    int sinceAsked = 0;   // elements read since the user was asked
    bool markSkipped = false;
    std::vector<VkmElement> elements;  // never shrinks; a line uses its first ones
    RawLine line;
    RawText text;
    int axisOrientation = 1;
    int linesBefore = 0;  // of other files
};

}  // namespace vemrado::map
