#include "map/header_check.h"

#include <utility>

namespace vemrado::map {

// Sheets of relative coordinates in one file have an origin each.
void HeaderCheck::Record(unsigned char letter, Place place, Field mark, bool relativeCoordinates) {
    const size_t number = letters.find(static_cast<char>(letter));
    if (number == std::string_view::npos) return;
    const std::string argument(1, letters[number]);
    const bool isSheet = letter == 'V' && relativeCoordinates;
    if (seen[number] && !isSheet) {
        Report(Rule::headerDoubled, place, mark, argument);
    } else if (end && !isSheet) {
        Report(Rule::headerLate, place, mark, argument);
    }
    seen[number] = true;
}

void HeaderCheck::UseOrigin() {
    if (originMissed || seen[letters.find('V')]) return;
    originMissed = true;
    Report(Rule::relativeWithoutOrigin, relative.place, relative.field, {});
}

// A map needs no date. Where an origin was missed that has been told.
void HeaderCheck::FileEnd() {
    for (const char letter : {'V', 'R'}) {
        const bool told = letter == 'V' && originMissed;
        if (!seen[letters.find(letter)] && !told)
            Report(Rule::headerMissing, end.value_or(Place{}), {}, std::string(1, letter));
    }
}

void HeaderCheck::Report(Rule rule, Place place, Field field, std::string argument) {
    sink.Take({rule, place, field, {std::move(argument), {}}, std::nullopt});
}

}  // namespace vemrado::map
