// The elements of a file one by one, as they stand in it, for programs: JSON in lines, with the members of
// `vkm dump`.

#pragma once

#include <memory>
#include <string>

#include "client/text_encoding.h"
#include "map/importer.h"
#include "source.h"

namespace vemrado::web {

class ElementReader {
  public:
    // Throws std::runtime_error when the file cannot be opened or is no map.
    ElementReader(const std::string& name, int file, double length, client::Encoding encoding,
                  int axisOrientation);

    // About so many bytes of elements; empty at the end. A read error leaves it as the framework's exception.
    const std::string& Next(size_t bytes);
    bool Complete() const { return importer.Complete(); }
    // Lines of the file read so far.
    int LineCount() const { return importer.LineCount(); }
    double Scale() const { return importer.Scale(); }

  private:
    void PutLine(const map::RawLine& line);
    void PutText(const map::RawText& text);
    void PutNumber(const char* before, double value);
    void PutPoint(const char* before, double x, double y);
    void PutBytes(const char* before, std::string_view bytes);

    OfferedFile offered;
    map::Importer importer;
    client::TextDecoder decoder;
    std::string batch;
    std::string decoded;
};

}  // namespace vemrado::web
