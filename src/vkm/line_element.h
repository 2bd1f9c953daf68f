// The point that opens every element, and the line element itself: what most lines of a file hold, and so
// inline.

#pragma once

#include "support/numbers.h"
#include "vkm/coordinates.h"
#include "vkm/reader_state.h"
#include "vkm/tokenizer.h"

namespace vemrado {

// The type of a line element as the first character of its field says.
inline uint32_t ElementType(Field field) {
    if (IsNone(field)) return typeNone;
    return Is(field[0], elementType) ? static_cast<unsigned char>(field[0]) : uint32_t{typeUnknown};
}

// A field as a number, 0 when there is none.
inline double RealOf(Field field) {
    return IsNone(field) ? 0.0 : ParseBufferedReal(field);
}

// Makes a point of the file absolute and turns it to the host's axes.
template <class Element>
[[gnu::always_inline]] inline void SetPoint(const CVKMReaderState& state, double x, double y,
                                            Element& point) {
    if (state.relativeCoordinates != 0) {
        x += state.originX;
        y += state.originY;
    }
    ApplyAxisOrientation(x, y, state.axisOrientation);
    point.x = x;
    point.y = y;
}

// The file gives the second coordinate first.
template <class Element>
[[gnu::always_inline]] inline void ReadPoint(const CVKMReaderState& state, CVKMTokenizer& fields,
                                             Element& point) {
    const Field first = fields.NextToken();
    const Field second = fields.NextToken();
    double x, y;
    if (IsNone(second) || !numbers::ParsePlainPair(first, second, y, x)) [[unlikely]] {
        y = RealOf(first);
        x = RealOf(second);
    }
    SetPoint(state, x, y, point);
}

// A number of a key field; X is reserved.
inline void ReadLineValue(char key, Field value, CVKMLineElement& element) {
    switch (key) {
        case 'M':
            element.valueM = ParseBufferedReal(value);
            break;
        case 'R':
            element.valueR = ParseBufferedReal(value);
            break;
        case 'S':
            element.symbolCode = ParseInteger(value);
            break;
        case 'U':
            element.valueU = ParseBufferedReal(value);
            break;
        default:
            break;
    }
}

// The key fields of the rest of the line, for the line element being read.
[[gnu::always_inline]] inline void ReadLineKeys(CVKMReaderState& state, CVKMTokenizer& fields) {
    CVKMLineElement& element = state.lineElements.Working();
    char key = 0;
    for (Field value; !IsNone(value = fields.NextKeyValue(lineKey, key));) {
        if (key == 'K') {
            state.lineElements.SetWorkingCode(value);
        } else {
            ReadLineValue(key, value, element);
        }
    }
}

// A new line element of a type with its point and key fields.
[[gnu::always_inline]] inline void StartLineElement(CVKMReaderState& state, CVKMTokenizer& fields,
                                                    uint32_t type) {
    CVKMLineElement& element = state.lineElements.Working();
    element = defaultLineElement;
    element.type = type;
    ReadPoint(state, fields, element);
    ReadLineKeys(state, fields);
    state.elementPending = 1;
}

// More key fields for the line element being read; when there is none, for a new one without type and point.
inline void ContinueLineElement(CVKMReaderState& state, CVKMTokenizer fields) {
    if (state.elementPending == 0) state.lineElements.Working() = defaultLineElement;
    ReadLineKeys(state, fields);
    state.elementPending = 1;
}

}  // namespace vemrado
