// The text record.

#pragma once

#include "vkm/line_reader.h"
#include "vkm/reader_state.h"
#include "vkm/tokenizer.h"

namespace vemrado {

// With start the text's point and quoted text; key fields always.
void ParseT(CVKMReaderState& state, CVKMTokenizer fields, bool start);

// A text in the plain form (plain_fields.h), as its line says it.
struct PlainText {
    double x = 0;
    double y = 0;
    Field text;
    CVKMTextValues values;
};

// Takes the next line of the file when it is such a text. False, with nothing taken, for any other line.
bool TakePlainText(CVKMLineReader& reader, PlainText& plain);
// Makes it the text being read. Its characters are those of the line just taken.
void StartPlainText(CVKMReaderState& state, const PlainText& plain);

}  // namespace vemrado
