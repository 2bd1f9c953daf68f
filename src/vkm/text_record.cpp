#include "vkm/text_record.h"

#include "vkm/line_element.h"
#include "vkm/plain_fields.h"

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

void ApplyTextDefaults(CVKMTextValues& text, int32_t layer) {
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

// X is reserved.
void SetValue(char key, Field value, CVKMTextValues& text) {
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
            break;
    }
}

}  // namespace

void ParseT(CVKMReaderState& state, CVKMTokenizer fields, bool start) {
    CVKMText& text = state.workingText;
    if (start) {
        text = defaultText;
        ReadPoint(state, fields, text);
        const Field quoted = fields.NextQuoted();
        if (!IsNone(quoted)) text.text.Set(quoted);
    }
    char key = 0;
    for (Field value; !IsNone(value = fields.NextKeyValue(textKey, key));) SetValue(key, value, text.values);
    ApplyTextDefaults(text.values, state.layerNumber);
    state.textPending = 1;
}

bool TakePlainText(CVKMLineReader& reader, PlainText& plain) {
    const std::string_view ahead = reader.Ahead();
    const char* const line = ahead.data();
    if (ahead.empty() || line[0] != '&' || line[1] != 'T' || line[2] != ' ') return false;

    PlainFields fields(line, 3);
    if (!fields.TakePoint(plain.x, plain.y) || !fields.GoesOn() || !fields.TakeQuoted(plain.text))
        return false;
    while (fields.GoesOn()) {
        const Field field = fields.Take();
        if (field.empty()) break;
        if (!IsPlainKey(field, textKey)) return false;
        SetValue(field[0], field.substr(2), plain.values);
    }
    return fields.TakeLine(reader);
}

void StartPlainText(CVKMReaderState& state, const PlainText& plain) {
    CVKMText& text = state.workingText;
    SetPoint(state, plain.x, plain.y, text);
    text.text.Set(plain.text);
    text.values = plain.values;
    ApplyTextDefaults(text.values, state.layerNumber);
    state.textPending = 1;
}

}  // namespace vemrado
