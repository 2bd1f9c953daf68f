#include "vkm/element_loop.h"

#include <cstring>

#include "vkm/line_element.h"
#include "vkm/record_parsers.h"
#include "vkm/tokenizer.h"

namespace vemrado {

namespace {

bool BelongsToHeader(uint32_t recordClass) {
    return recordClass == 'V' || recordClass == 'R' || recordClass == 'D' || recordClass == '*' ||
           recordClass == emptyLine;
}

// Moves the element being read to the end of the line's elements.
void FlushElement(CVKMReaderState& state) {
    if (state.elementPending == 0) return;
    state.lineElements.Append();
    state.elementPending = 0;
}

// Makes the text being read the current one; the working text keeps its values until the next T record.
void CommitText(CVKMReaderState& state) {
    state.currentText = state.workingText;
    state.textPending = 0;
}

// A line that does not open a record goes on with the current one.
void ContinueRecord(CVKMReaderState& state, CVKMTokenizer line, Field first) {
    if (state.currentRecord != 'L') {
        DispatchRecord(state, line, state.currentRecord, false);
    } else if (!IsNone(first) && Is(first[0], elementType)) {
        FlushElement(state);
        StartLineElement(state, line, ElementType(first));
    } else {
        ContinueLineElement(state, line);
    }
}

// A record's own line ends the element being read. Returns the element that is complete now.
Element StartRecord(CVKMReaderState& state, CVKMTokenizer line, uint32_t letter) {
    FlushElement(state);
    if (state.textPending != 0) CommitText(state);
    state.elementLayerNumber = state.layerNumber;
    std::memcpy(state.elementLayerText, state.layerText, sizeof state.layerText);
    DispatchRecord(state, line, letter, true);
    const uint32_t ended = state.currentRecord;
    state.currentRecord = letter;
    return ended == 'L' ? Element::line : ended == 'T' ? Element::text : Element::none;
}

}  // namespace

bool ReadHeader(CVKMReaderState& state, CVKMLineReader& reader) {
    uint32_t recordClass = emptyLine;
    CVKMTokenizer line;
    LineResult result;
    while ((result = reader.ReadLine(line)) == LineResult::line) {
        recordClass = ClassifyRecord(line.NextToken());
        DispatchRecord(state, line, recordClass, true);
        if (!BelongsToHeader(recordClass)) break;
    }
    if (result == LineResult::error) return false;
    state.currentRecord = recordClass;
    return true;
}

Element ReadNextElement(CVKMReaderState& state, CVKMLineReader& reader) {
    if (state.currentRecord == 'K') return Element::none;
    state.lineElements.Clear();
    FlushElement(state);
    CVKMTokenizer line;
    LineResult result;
    while ((result = reader.ReadLine(line)) == LineResult::line) {
        const Field first = line.NextToken();
        const uint32_t recordClass = ClassifyRecord(first);
        if (recordClass == unknownRecord) continue;
        if (recordClass == emptyLine || recordClass == continuationLine) {
            ContinueRecord(state, line, first);
            continue;
        }
        const Element element = StartRecord(state, line, recordClass);
        if (element != Element::none || recordClass == 'K') return element;
    }
    return result == LineResult::error ? Element::error : Element::none;
}

}  // namespace vemrado
