#include "vkm/record_parsers.h"

#include <cstdio>
#include <cstring>

#include "vkm/line_element.h"
#include "vkm/text_record.h"

namespace vemrado {

namespace {

int32_t NextInteger(CVKMTokenizer& fields) {
    const Field field = fields.NextToken();
    return IsNone(field) ? 0 : ParseInteger(field);
}

void ParseV(CVKMReaderState& state, CVKMTokenizer fields) {
    fields.NextToken();
    state.originY = RealOf(fields.NextToken());
    state.originX = RealOf(fields.NextToken());
}

void ParseR(CVKMReaderState& state, CVKMTokenizer fields) {
    for (int i = 0; i < 4; ++i) fields.NextToken();
    const Field scale = fields.NextToken();
    state.mapScale = IsNone(scale) ? 1000.0 : ParseReal(scale);
    state.scaleFactor = state.mapScale / 1000.0;
    const Field coordinates = fields.NextToken();
    state.relativeCoordinates = !IsNone(coordinates) && (coordinates[0] == 'R' || coordinates[0] == 'r');
}

void ParseU(CVKMReaderState& state, CVKMTokenizer fields) {
    state.layerNumber = NextInteger(fields);
    char decimal[16];
    std::snprintf(decimal, sizeof decimal, "%d", static_cast<int>(state.layerNumber));
    std::memcpy(state.layerText, decimal, 2);
}

}  // namespace

void DispatchRecord(CVKMReaderState& state, CVKMTokenizer fields, uint32_t letter, bool start) {
    switch (letter) {
        case 'V':
            ParseV(state, fields);
            break;
        case 'R':
            ParseR(state, fields);
            break;
        case 'U':
            ParseU(state, fields);
            break;
        case 'L':
            StartLineElement(state, fields, ElementType(fields.NextToken()));
            break;
        case 'T':
            ParseT(state, fields, start);
            break;
        default:
            break;  // D, *, K, G and S are accepted; nothing is taken from them
    }
}

}  // namespace vemrado
