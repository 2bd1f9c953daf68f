#include "vkm/record_parsers.h"

#include <cstdio>
#include <cstring>

#include "vkm/line_element.h"
#include "vkm/text_record.h"

namespace vemrado {

namespace {

int32_t NextInteger(CVKMTokenizer& line) {
    const Field field = line.NextToken();
    return IsNone(field) ? 0 : ParseInteger(field);
}

void ParseV(CVKMReaderState& state, CVKMTokenizer line) {
    line.NextToken();
    state.originY = RealOf(line.NextToken());
    state.originX = RealOf(line.NextToken());
}

void ParseR(CVKMReaderState& state, CVKMTokenizer line) {
    for (int i = 0; i < 4; ++i) line.NextToken();
    const Field scale = line.NextToken();
    state.mapScale = IsNone(scale) ? 1000.0 : ParseReal(scale);
    state.scaleFactor = state.mapScale / 1000.0;
    const Field coordinates = line.NextToken();
    state.relativeCoordinates = !IsNone(coordinates) && (coordinates[0] == 'R' || coordinates[0] == 'r');
}

void ParseU(CVKMReaderState& state, CVKMTokenizer line) {
    state.layerNumber = NextInteger(line);
    char decimal[16];
    std::snprintf(decimal, sizeof decimal, "%d", static_cast<int>(state.layerNumber));
    std::memcpy(state.layerText, decimal, 2);
}

}  // namespace

void DispatchRecord(CVKMReaderState& state, CVKMTokenizer line, uint32_t letter, bool start) {
    switch (letter) {
        case 'V':
            ParseV(state, line);
            break;
        case 'R':
            ParseR(state, line);
            break;
        case 'U':
            ParseU(state, line);
            break;
        case 'L':
            StartLineElement(state, line, ElementType(line.NextToken()));
            break;
        case 'T':
            ParseT(state, line, start);
            break;
        default:
            break;  // D, *, K, G and S are accepted; nothing is taken from them
    }
}

}  // namespace vemrado
