#include "vkm/record_parsers.h"

#include <cstdio>
#include <cstring>

#include "vkm/line_element.h"

namespace vemrado {

namespace {

// Size and F value of texts on layer 7, by K code.
struct TextDefault {
    int32_t code;
    double valueH;
    int32_t valueF;
};

constexpr TextDefault textDefaults[] = {
    {1001, 8.5, 6}, {1002, 5.0, 4}, {1004, 6.7, 4}, {1005, 4.4, 4}, {1007, 2.3, 2},
    {1008, 1.4, 2}, {1009, 4.4, 4}, {1010, 2.9, 2}, {1012, 8.5, 7}, {1013, 4.4, 3},
    {1014, 3.4, 1}, {1015, 2.3, 1}, {1018, 1.7, 1},
};
constexpr int32_t layerWithTextDefaults = 7;

// Code, F value and size of texts without a code, by layer.
struct LayerTextDefault {
    int32_t layer;
    int32_t code;
    int32_t valueF;
    double valueH;
};

constexpr LayerTextDefault layerTextDefaults[] = {{2, 18, 1, 1.7}, {8, 1016, 2, 1.7}};

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

void ApplyTextDefaults(CVKMText& text, int32_t layer) {
    if (text.code != 0) {
        if (layer != layerWithTextDefaults) return;
        for (const TextDefault& row : textDefaults) {
            if (row.code != text.code) continue;
            text.valueH = row.valueH;
            text.valueF = row.valueF;
        }
        return;
    }
    for (const LayerTextDefault& row : layerTextDefaults) {
        if (row.layer != layer) continue;
        text.code = row.code;
        text.valueF = row.valueF;
        text.valueH = row.valueH;
    }
}

}  // namespace

void ParseT(CVKMReaderState& state, CVKMTokenizer line, bool start) {
    CVKMText& text = state.workingText;
    if (start) {
        text = defaultText;
        ReadPoint(state, line, text);
        const Field quoted = line.NextQuoted();
        if (!IsNone(quoted)) text.text.Set(quoted);
    }
    char key = 0;
    for (Field value; !IsNone(value = line.NextKeyValue(textKey, key));) {
        switch (key) {
            case 'D':
                text.valueD = ParseInteger(value);
                break;
            case 'F':
                text.valueF = ParseInteger(value);
                break;
            case 'H':
                text.valueH = ParseBufferedReal(value);
                break;
            case 'K':
                text.code = ParseInteger(value);
                break;
            case 'U':
                text.valueU = ParseBufferedReal(value);
                break;
            default:
                break;  // X is reserved
        }
    }
    ApplyTextDefaults(text, state.layerNumber);
    state.textPending = 1;
}

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
