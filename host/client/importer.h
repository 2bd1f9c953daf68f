// An importer as our hosts use it: it reads one file, and each element is copied into records whose memory is
// used again for the next one.

#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "vemrado/vkm_details.h"

namespace vemrado::client {

// One element of a line.
struct ElementVertex {
    std::array<double, 3> point{};
    int type = 0;        // character code of C, K, L, P or R; 1 for another letter, 0 for none
    std::string code;    // K value as it stands in the file; empty: none
    int symbolCode = 0;  // S value; 0: no symbol
    double valueM = 1.0;
    double valueR = 0.0;
    double valueU = 0.0;
};

struct LineElement {
    int layer = 0;
    std::string layerName;
    std::span<const ElementVertex> vertices;
};

struct TextElement {
    int layer = 0;
    std::string layerName;
    std::string text;  // in the file's encoding
    std::array<double, 3> point{};
    int code = 0;  // K value; 0: none
    int valueD = 0;
    int valueF = 0;
    double scaledH = 0.0;  // H value times map scale / 1000
    double valueU = 0.0;
};

struct OpenOptions {
    std::string fileName;  // standardInputName: standard input
    bool loadSymbology = false;
    std::string layerName;
    int axisOrientation = 1;
    double gpScale = 0.0;
    int flags = 0;
};

enum class ElementKind { none, line, text };

class Importer {
  public:
    // Throws std::bad_alloc when there is no memory for an importer.
    Importer();
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;
    ~Importer();

    // False when the file could not be opened; a message box has said why. Throws ForeignFile for what is no
    // map.
    bool Open(const OpenOptions& options);
    void Close() { importer->Close(); }

    // Reads the next element into Line() or Text(). None at the end of the data, or when the user asked to
    // stop. A read error leaves it as CFileException.
    ElementKind Next();
    // Valid until the next call of Next.
    const LineElement& Line() const { return line; }
    const TextElement& Text() const { return text; }

    // True when a byte order mark before the first record was skipped.
    bool MarkSkipped() const { return markSkipped; }
    // True once the closing record was read.
    bool Complete() const { return importer->IsComplete() != 0; }
    bool Relative() const { return importer->GetRelativeCoordinates() != 0; }
    double Scale() const { return importer->GetScale(); }
    int LineCount() const { return importer->GetLineCount(); }

    // For what is not copied, such as line styles and symbols of the element just read.
    CVKMDetails& Interface() const { return *importer; }

  private:
    void ReadLayer(int& number, std::string& name);
    void ReadLine();
    void ReadText();

    CVKMDetails* importer;
    bool markSkipped = false;
    std::vector<ElementVertex> vertices;  // never shrinks; a line uses its first elements
    LineElement line;
    TextElement text;
};

}  // namespace vemrado::client
