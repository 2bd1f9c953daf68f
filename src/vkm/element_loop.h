// Reads a VKM file element by element: a small state machine over the record letters. An element is complete
// when the next record's line is read.

#pragma once

#include "vkm/line_reader.h"
#include "vkm/reader_state.h"

namespace vemrado {

enum class ElementKind {
    none = 0,  // end of the data or of the file, or the user stopped
    line = 1,
    text = 2,
    error = -1,  // the file could not be read; what was read before it is in the state
};

// Reads the records before the first element. The line that ends the header has been parsed as the start of
// its record. False when the file could not be read.
bool ReadHeader(CVKMReaderState& state, CVKMLineReader& reader);

// Reads until the next element is complete. May throw std::bad_alloc, with the state as after an unread line.
ElementKind ReadNextElement(CVKMReaderState& state, CVKMLineReader& reader);

}  // namespace vemrado
