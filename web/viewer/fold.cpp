#include "fold.h"

namespace vemrado::web {
namespace {

// Of U+00C0 to U+017F.
constexpr std::string_view plainLetters =
    "aaaaaaaceeeeiiiidnoooooxouuuuytsaaaaaaaceeeeiiiidnooooo:ouuuuyty"
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiiijjkkklllllll"
    "lllnnnnnnnnnoooooooorrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(plainLetters.size() == 0x180 - 0xC0);

}  // namespace

void AppendFolded(std::string_view utf8, std::string& folded) {
    for (size_t i = 0; i < utf8.size(); ++i) {
        const char c = utf8[i];
        const auto lead = static_cast<unsigned char>(c);
        if (lead >= 0xC3 && lead <= 0xC5 && i + 1 < utf8.size()) {
            const unsigned character = (lead & 0x1Fu) << 6 | (static_cast<unsigned char>(utf8[++i]) & 0x3Fu);
            folded += plainLetters[character - 0xC0];
        } else {
            folded += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
    }
}

}  // namespace vemrado::web
