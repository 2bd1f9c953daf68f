#include "vkm/element_loop.h"

#include <algorithm>
#include <cstring>

#include "vkm/line_element.h"
#include "vkm/plain_element.h"
#include "vkm/record_parsers.h"
#include "vkm/text_record.h"
#include "vkm/tokenizer.h"

namespace vemrado {

namespace {

bool BelongsToHeader(uint32_t recordClass) {
    return recordClass == 'V' || recordClass == 'R' || recordClass == 'D' || recordClass == '*' ||
           recordClass == emptyLine;
}

String Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return Is(c, blankCharacter); };
    const auto* begin = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto* end = text.end();
    while (end != begin && isBlank(end[-1])) --end;
    return {begin, end};
}

// Keeps what a line of the header says; the parsers take the numbers from it. mark is its first field.
void NoteHeaderLine(CVKMHeader& header, uint32_t recordClass, Field mark, CVKMTokenizer line) {
    if (recordClass == 'V') header.name = String(line.NextToken());
    if (recordClass == 'D') header.date = Trimmed(line.Rest());
    if (recordClass != '*') return;
    // A comment may begin right behind its mark.
    const char* begin = mark.data() + 2;
    const std::string_view rest = line.Rest();
    String comment = Trimmed({begin, static_cast<size_t>(rest.data() + rest.size() - begin)});
    if (comment.empty()) return;
    if (!header.comments.empty()) header.comments += '\n';
    header.comments.append(
        comment, 0, CVKMHeader::mostComments - std::min(header.comments.size(), CVKMHeader::mostComments));
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

// Whether a line that opens no record is the next element of a line.
bool IsLineElement(const CVKMReaderState& state, Field first) {
    return state.currentRecord == 'L' && !IsNone(first) && Is(first[0], elementType);
}

// Any other line that opens no record: it goes on with the current one.
void ContinueRecord(CVKMReaderState& state, CVKMTokenizer line, int32_t fileLine) {
    if (state.currentRecord == 'L') {
        const bool begins = state.elementPending == 0;
        ContinueLineElement(state, line);
        if (begins) state.lineElements.Working().fileLine = fileLine;
    } else {
        DispatchRecord(state, line, state.currentRecord, false);
    }
}

// A record's own line ends the element being read. Returns the element that is complete now.
Element CompleteElement(CVKMReaderState& state) {
    if (state.textPending != 0) CommitText(state);
    state.elementLayerNumber = state.layerNumber;
    std::memcpy(state.elementLayerText, state.layerText, sizeof state.layerText);
    return state.currentRecord == 'L'   ? Element::line
           : state.currentRecord == 'T' ? Element::text
                                        : Element::none;
}

// Lines in the plain form, until one completes an element or the next line is in another form.
Element ReadPlainLines(CVKMReaderState& state, CVKMLineReader& reader) {
    Element completed = Element::none;
    while (completed == Element::none) {
        bool opensLine;
        if (TakePlainElement(state, reader, opensLine)) {
            if (!opensLine) continue;
            completed = CompleteElement(state);
            state.currentRecord = 'L';
        } else if (PlainText text; TakePlainText(reader, text)) {
            FlushElement(state);
            completed = CompleteElement(state);
            StartPlainText(state, text);
            state.workingText.fileLine = reader.FileLine();
            state.currentRecord = 'T';
        } else {
            break;
        }
    }
    return completed;
}

// A line in any form. Returns the element that it completes.
Element ReadAnyLine(CVKMReaderState& state, CVKMTokenizer line, int32_t fileLine) {
    const Field first = line.NextToken();
    const uint32_t recordClass = ClassifyRecord(first);
    if (recordClass == unknownRecord) return Element::none;
    if (recordClass == emptyLine || recordClass == continuationLine) {
        if (IsLineElement(state, first)) {
            FlushElement(state);
            StartLineElement(state, line, ElementType(first));
            state.lineElements.Working().fileLine = fileLine;
        } else {
            ContinueRecord(state, line, fileLine);
        }
        return Element::none;
    }
    FlushElement(state);
    const Element completed = CompleteElement(state);
    DispatchRecord(state, line, recordClass, true);
    if (recordClass == 'L') state.lineElements.Working().fileLine = fileLine;
    if (recordClass == 'T') state.workingText.fileLine = fileLine;
    state.currentRecord = recordClass;
    return completed;
}

}  // namespace

bool ReadHeader(CVKMReaderState& state, CVKMLineReader& reader) {
    uint32_t recordClass = emptyLine;
    CVKMTokenizer line;
    LineResult result;
    state.header = CVKMHeader();
    while ((result = reader.ReadLine(line)) == LineResult::line) {
        const Field mark = line.NextToken();
        recordClass = ClassifyRecord(mark);
        NoteHeaderLine(state.header, recordClass, mark, line);
        DispatchRecord(state, line, recordClass, true);
        if (!BelongsToHeader(recordClass)) break;
    }
    state.lineElements.Working().fileLine = state.workingText.fileLine = reader.FileLine();
    if (result == LineResult::error) return false;
    state.currentRecord = recordClass;
    return true;
}

Element ReadNextElement(CVKMReaderState& state, CVKMLineReader& reader) {
    if (state.currentRecord == 'K') return Element::none;
    state.lineElements.Clear();
    FlushElement(state);
    while (true) {
        if (const Element completed = ReadPlainLines(state, reader); completed != Element::none) {
            return completed;
        }
        CVKMTokenizer line;
        const LineResult result = reader.ReadLine(line);
        if (result != LineResult::line) return result == LineResult::error ? Element::error : Element::none;
        const Element completed = ReadAnyLine(state, line, reader.FileLine());
        if (completed != Element::none || state.currentRecord == 'K') return completed;
    }
}

}  // namespace vemrado
