// One parser for each record of a VKM file. A parser stands behind the record's mark (or a continuation
// line's first field) and reads the rest of the line into the reader state.

#pragma once

#include <cstdint>

#include "vkm/reader_state.h"
#include "vkm/tokenizer.h"

namespace vemrado {

// Runs the parser of a record letter; letters without one change nothing. start is true on the record's own
// line and false on a continuation line, which the single-line records parse again as a complete record.
void DispatchRecord(CVKMReaderState& state, CVKMTokenizer fields, uint32_t letter, bool start);

}  // namespace vemrado
