// Line elements in the plain form (plain_fields.h): a blank or the mark of a line record, the type, two
// numbers and key fields.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vkm/line_element.h"
#include "vkm/line_reader.h"
#include "vkm/plain_fields.h"
#include "vkm/reader_state.h"

namespace vemrado {

// False for a code that is too long to stand in the element.
[[gnu::always_inline]] inline bool SetPlainValue(Field field, CVKMLineElement& element) {
    const Field value = field.substr(2);
    if (field[0] == 'K') [[likely]]
        return element.code.Set(value);
    ReadLineValue(field[0], value, element);
    return true;
}

// The next line of the file as an element of a line, made the one that is being read. opensLine says whether
// it is its line's first: the one before is complete then. False when the next line is not in the plain form.
[[gnu::always_inline]] inline bool TakePlainElement(CVKMReaderState& state, CVKMLineReader& reader,
                                                    bool& opensLine) {
    const std::string_view ahead = reader.Ahead();
    // Nobody sees what stands there until the line has been taken.
    CVKMLineElement* const element = state.lineElements.PlaceOfNext(state.elementPending != 0);
    if (ahead.empty() || element == nullptr) return false;

    const char* const text = ahead.data();
    opensLine = text[0] == '&' && text[1] == 'L' && text[2] == ' ';
    const size_t type = opensLine ? 3 : text[0] == ' ' ? 1 : 0;
    if (text[type + 1] != ' ' || !Is(text[type], elementType)) return false;
    if (!opensLine && state.currentRecord != 'L') return false;

    PlainFields fields(text, type + 2);
    double x, y;
    if (!fields.TakePoint(x, y)) return false;
    *element = defaultLineElement;
    element->type = static_cast<unsigned char>(text[type]);
    element->fileLine = reader.FileLine() + 1;
    SetPoint(state, x, y, *element);
    while (fields.GoesOn()) {
        const Field field = fields.Take();
        if (field.empty()) break;
        if (!IsPlainKey(field, lineKey) || !SetPlainValue(field, *element)) return false;
    }
    if (!fields.TakeLine(reader)) return false;
    state.lineElements.TakeNext(state.elementPending != 0);
    state.elementPending = 1;
    return true;
}

}  // namespace vemrado
