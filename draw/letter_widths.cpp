#include <algorithm>
#include <bit>

#include "letter_widths_table.h"
#include "style.h"

namespace vemrado::draw {
namespace {

constexpr double unitsPerEm = 10000;
constexpr uint16_t otherWidth = 6500;  // letters of other scripts come from other fonts

// Takes the first character off a UTF-8 text that is not empty.
char32_t TakeCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const int ones = std::countl_one(lead);
    text.remove_prefix(1);
    if (ones < 2 || ones > 4) return lead;
    char32_t character = lead & (0x7Fu >> ones);
    for (int i = 1; i < ones && !text.empty() && (text.front() & 0xC0) == 0x80; ++i) {
        character = character << 6 | (static_cast<unsigned char>(text.front()) & 0x3Fu);
        text.remove_prefix(1);
    }
    return character;
}

uint16_t LetterWidth(char32_t character, size_t faceNumber) {
    size_t before = 0;
    for (const CharacterRange& range : measuredRanges) {
        if (character < range.first) return otherWidth;
        if (character <= range.last) return letterWidths[faceNumber][before + (character - range.first)];
        before += range.last - range.first + 1;
    }
    return otherWidth;
}

}  // namespace

double TextWidth(const std::string& text, const Face& face, double height) {
    const size_t faceNumber = (face.italic ? 1u : 0u) + (face.bold ? 2u : 0u) + (face.serif ? 4u : 0u);
    uint64_t units = 0;
    for (std::string_view rest = text; !rest.empty();) units += LetterWidth(TakeCharacter(rest), faceNumber);
    return static_cast<double>(units) / unitsPerEm * height / capitalsPerEm;
}

}  // namespace vemrado::draw
