// A whole map in flat arrays, for comparison with another state of it. 24 bytes a point, 32 a symbol, about
// 80 a text.

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "map/checked_reading.h"

namespace vemrado::map {

struct StateVertex {
    Point point;
    uint32_t line = 0;    // of the file
    uint32_t pen = 0;     // number of layer and code of the segment that ends here
    bool begins = false;  // a stroke; no segment ends here
};

struct StateSymbol {
    Point point;
    uint32_t line = 0;
    uint32_t sign = 0;  // number of layer, symbol code, scale, rotation and, of one alone, line code
};

struct StateText {
    Point point;
    double height = 0;    // H value
    double rotation = 0;  // U value
    uint64_t words = 0;   // where they begin among all
    uint32_t length = 0;
    uint32_t line = 0;
    int32_t layer = 0;
    int32_t code = 0;
    int32_t valueD = 0;
    int32_t valueF = 0;
};

struct LinePen {
    int layer = 0;
    std::string code;
    auto operator<=>(const LinePen&) const = default;
};

struct Sign {
    int layer = 0;
    int symbol = 0;
    double scale = 1;
    double rotation = 0;
    std::string code;
    auto operator<=>(const Sign&) const = default;
};

// Numbers for values that many elements share; equal values have equal numbers.
template <typename Value>
class Numbering {
  public:
    uint32_t NumberOf(const Value& value) {
        if (last < values.size() && *values[last] == value) return last;
        const auto [entry, isNew] = numbers.try_emplace(value, static_cast<uint32_t>(values.size()));
        if (isNew) values.push_back(&entry->first);
        return last = entry->second;
    }
    const Value& operator[](uint32_t number) const { return *values[number]; }

  private:
    std::map<Value, uint32_t> numbers;
    std::vector<const Value*> values;
    uint32_t last = 0;
};

// What the two states share.
struct StateValues {
    Numbering<LinePen> pens;
    Numbering<Sign> signs;
};

class MapState : public ElementSink {
  public:
    explicit MapState(StateValues& sharedValues) : values(sharedValues) {}

    void Line(std::span<const CheckedVertex> elements, const CheckedLayer& layer) override;
    void Text(const CheckedText& text, const CheckedLayer& layer) override;

    std::string_view Words(const StateText& text) const { return {words.data() + text.words, text.length}; }

    std::vector<StateVertex> vertices;
    std::vector<StateSymbol> symbols;
    std::vector<StateText> texts;

  private:
    void EndStroke(size_t begin, size_t symbolsBefore);
    void AddSymbol(const CheckedVertex& element, Point place, int layer);

    StateValues& values;
    std::string words;  // of all texts, one behind the other
    LinePen pen;
};

}  // namespace vemrado::map
