// One parser for each record of a VKM file. A parser stands behind the record's mark (or a continuation
// line's first field) and reads the rest of the line into the reader state.

#pragma once

#include <cstdint>

#include "vkm/reader_state.h"
#include "vkm/tokenizer.h"

namespace vemrado {

// Runs the parser of a record letter; letters without one change nothing. start is true on the record's own
// line and false on a continuation line, which the single-line records parse again as a complete record.
void DispatchRecord(CVKMReaderState& state, CVKMTokenizer& line, uint32_t letter, bool start);

// A line element: with start a new element of this type with its point, otherwise key fields for the pending
// one.
void ParseLineElement(CVKMReaderState& state, CVKMTokenizer& line, uint32_t type, bool start);

// A text: with start its point and quoted text; key fields always.
void ParseT(CVKMReaderState& state, CVKMTokenizer& line, bool start);

// The type of a line element as the first character of its field says.
inline uint32_t ElementType(Field field) {
    return Is(field[0], elementType) ? static_cast<unsigned char>(field[0]) : uint32_t{typeUnknown};
}

}  // namespace vemrado
