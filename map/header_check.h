// Whether a map file has its header records, each once and before everything else.

#pragma once

#include <array>
#include <optional>
#include <string>

#include "map/field_cursor.h"
#include "map/findings.h"

namespace vemrado::map {

class HeaderCheck {
  public:
    explicit HeaderCheck(FindingSink& findingSink) : sink(findingSink) {}

    // A record of any letter. Those that are no header records are passed over.
    // relativeCoordinates: of what was read before it.
    void Record(unsigned char letter, Place place, Field mark, bool relativeCoordinates);
    // The first line that is none of the header.
    void End(Place place) { end = place; }
    // The field that makes coordinates relative.
    void MakeRelative(Place place, Field field) { relative = {place, std::string(field)}; }
    // A point that takes the origin.
    void UseOrigin();
    // There was such a point without an origin.
    bool OriginMissed() const { return originMissed; }
    void FileEnd();

  private:
    static constexpr std::string_view letters = "VRD";

    struct FieldPlace {
        Place place;
        std::string field;
    };

    void Report(Rule rule, Place place, Field field, std::string argument);

    FindingSink& sink;
    std::array<bool, letters.size()> seen{};
    std::optional<Place> end;
    FieldPlace relative;
    bool originMissed = false;
};

}  // namespace vemrado::map
