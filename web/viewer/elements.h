// The elements of a file one by one, as they stand in it, for programs: batches of numbers and texts, which
// engine/elements.ts turns into objects.

#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "client/text_encoding.h"
#include "map/importer.h"
#include "source.h"

namespace vemrado::web {

// Each line is its number of points, its layer and its line of the file, then for each point x, y, type
// letter (0: none), place of its code among the texts, and the values M, R, S and U. Each text is -1, its
// layer and line of the file, place among the texts, x, y, and the values D, F, H, K and U.
struct ElementBatch {
    std::vector<double> numbers;
    std::string texts;  // UTF-8, each ends with a line feed
};

class ElementReader {
  public:
    // Throws std::runtime_error when the file cannot be opened or is no map.
    ElementReader(const std::string& name, int file, double length, client::Encoding encoding,
                  int axisOrientation);

    // Elements of about so many numbers; none at the end. A read error leaves it as the framework's
    // exception.
    const ElementBatch& Next(size_t numbers);
    const ElementBatch& Batch() const { return batch; }
    bool Complete() const { return importer.Complete(); }
    // Lines of the file read so far.
    int LineCount() const { return importer.LineCount(); }

  private:
    void PutLine(const map::RawLine& line);
    void PutText(const map::RawText& text);
    double PlaceOfCode(std::string_view code);
    double AddText(std::string_view bytes);

    OfferedFile offered;
    map::Importer importer;
    client::TextDecoder decoder;
    ElementBatch batch;
    size_t textCount = 0;
    std::unordered_map<std::string, double> codes;  // of the batch, as in the file
    std::string lastCode;
    double placeOfLast = -1;  // below 0: there is none
};

}  // namespace vemrado::web
