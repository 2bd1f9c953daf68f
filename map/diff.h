// What changed between two states of a map, whatever the order of records, the direction and cutting of lines
// and the formatting of numbers.

#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/text_encoding.h"
#include "map/map_state.h"

namespace vemrado::map {

enum class ChangeKind : uint8_t { added, removed, changed, moved };
enum class ChangedThing : uint8_t { line, text, symbol };

inline constexpr std::array<std::string_view, 4> changeNames = {"added", "removed", "changed", "moved"};
inline constexpr std::array<std::string_view, 3> thingNames = {"line", "text", "symbol"};

// What something was or is. Points are as orientation 1 has them; a line has a run of them, a text and a
// symbol have one. Texts and codes are in the file's encoding and valid as long as the states.
struct ChangeSide {
    int64_t fileLine = 0;
    std::vector<Point> points;
    std::string_view code;  // of a line or of a symbol that stands alone
    const Sign* sign = nullptr;
    const StateText* text = nullptr;
    std::string_view words;
};

struct Change {
    ChangeKind kind = ChangeKind::added;
    ChangedThing thing = ChangedThing::line;
    int layer = 0;
    std::optional<ChangeSide> old;
    std::optional<ChangeSide> now;
};

constexpr double usualTolerance = 0.05;  // m by which a text may have moved

class ChangeSink {
  public:
    virtual void Take(const Change& change) = 0;

  protected:
    ~ChangeSink() = default;
};

// Lines are compared segment by segment within a layer, and changed segments are joined to runs. Equal
// geometry with another code, symbol or text is changed; a text with the same words within the tolerance (m)
// is moved. Both states stand on the same values. Takes n time and 17 bytes more for each element of both.
void CompareMaps(const MapState& old, const MapState& now, const StateValues& values, double tolerance,
                 ChangeSink& sink);

// A side as JSON: the value of old and new in `vkm diff --json`.
std::string SideJson(const ChangeSide& side, client::TextDecoder& decoder);

}  // namespace vemrado::map
