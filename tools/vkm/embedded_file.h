// A file inside a page: packed by gzip and written as text, in an element that the page finds by its class.

#pragma once

#include <zlib.h>

#include <string>
#include <string_view>

#include "draw/canvas.h"

namespace vemrado::tools {

class EmbeddedFile {
  public:
    // attributes: of the element, such as id="embedded-map"; values are written with Escaped.
    EmbeddedFile(const draw::ByteSink& sink, const std::string& attributes);
    EmbeddedFile(const EmbeddedFile&) = delete;
    EmbeddedFile& operator=(const EmbeddedFile&) = delete;
    ~EmbeddedFile();

    // The next bytes of the file, of any number.
    void Add(std::string_view bytes);
    void Finish();

    // Of the text so far.
    uint64_t Length() const { return length; }

  private:
    void Pack(int flush);
    // Writes all groups of three bytes that there are; the rest too when it is the last.
    void PutText(bool last);

    const draw::ByteSink& sink;
    z_stream stream{};
    std::string packed;  // not written yet
    uint64_t length = 0;
};

// A text as the value of an attribute has it, between double quotes.
std::string Escaped(const std::string& text);

}  // namespace vemrado::tools
