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
void NoteHeaderLine(CVKMHeader& header, uint32_t recordClass, Field mark, CVKMTokenizer fields) {
    if (recordClass == 'V') header.name = String(fields.NextToken());
    if (recordClass == 'D') header.date = Trimmed(fields.Rest());
    if (recordClass != '*') return;
    // A comment may begin right behind its mark.
    const char* begin = mark.data() + 2;
    const std::string_view rest = fields.Rest();
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
void ContinueRecord(CVKMReaderState& state, CVKMTokenizer fields, int32_t fileLine) {
    if (state.currentRecord == 'L') {
        const bool begins = state.elementPending == 0;
        ContinueLineElement(state, fields);
        if (begins) state.lineElements.Working().fileLine = fileLine;
    } else {
        DispatchRecord(state, fields, state.currentRecord, false);
    }
}

// A record's own line ends the element being read. Returns the element that is complete now.
ElementKind CompleteElement(CVKMReaderState& state) {
    if (state.textPending != 0) CommitText(state);
    state.elementLayerNumber = state.layerNumber;
    std::memcpy(state.elementLayerText, state.layerText, sizeof state.layerText);
    return state.currentRecord == 'L'   ? ElementKind::line
           : state.currentRecord == 'T' ? ElementKind::text
                                        : ElementKind::none;
}

// Lines in the plain form, until one completes an element or the next line is in another form.
ElementKind ReadPlainLines(CVKMReaderState& state, CVKMLineReader& reader) {
    ElementKind completed = ElementKind::none;
    while (completed == ElementKind::none) {
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
ElementKind ReadAnyLine(CVKMReaderState& state, CVKMTokenizer fields, int32_t fileLine) {
    const Field first = fields.NextToken();
    const uint32_t recordClass = ClassifyRecord(first);
    if (recordClass == unknownRecord) return ElementKind::none;
    if (recordClass == emptyLine || recordClass == continuationLine) {
        if (IsLineElement(state, first)) {
            FlushElement(state);
            StartLineElement(state, fields, ElementType(first));
            state.lineElements.Working().fileLine = fileLine;
        } else {
            ContinueRecord(state, fields, fileLine);
        }
        return ElementKind::none;
    }
    FlushElement(state);
    const ElementKind completed = CompleteElement(state);
    DispatchRecord(state, fields, recordClass, true);
    if (recordClass == 'L') state.lineElements.Working().fileLine = fileLine;
    if (recordClass == 'T') state.workingText.fileLine = fileLine;
    state.currentRecord = recordClass;
    return completed;
}

}  // namespace

bool ReadHeader(CVKMReaderState& state, CVKMLineReader& reader) {
    uint32_t recordClass = emptyLine;
    CVKMTokenizer fields;
    LineResult result;
    state.header = CVKMHeader();
    while ((result = reader.ReadLine(fields)) == LineResult::line) {
        const Field mark = fields.NextToken();
        recordClass = ClassifyRecord(mark);
        NoteHeaderLine(state.header, recordClass, mark, fields);
        DispatchRecord(state, fields, recordClass, true);
        if (!BelongsToHeader(recordClass)) break;
    }
    state.lineElements.Working().fileLine = state.workingText.fileLine = reader.FileLine();
    if (result == LineResult::error) return false;
    state.currentRecord = recordClass;
    return true;
}

ElementKind ReadNextElement(CVKMReaderState& state, CVKMLineReader& reader) {
    if (state.currentRecord == 'K') return ElementKind::none;
    state.lineElements.Clear();
    FlushElement(state);
    while (true) {
        if (const ElementKind completed = ReadPlainLines(state, reader); completed != ElementKind::none) {
            return completed;
        }
        CVKMTokenizer fields;
        const LineResult result = reader.ReadLine(fields);
        if (result != LineResult::line)
            return result == LineResult::error ? ElementKind::error : ElementKind::none;
        const ElementKind completed = ReadAnyLine(state, fields, reader.FileLine());
        if (completed != ElementKind::none || state.currentRecord == 'K') return completed;
    }
}

}  // namespace vemrado
