// What each character means to the reader, as one table of bits.

#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vemrado {

enum CharacterClass : uint8_t {
    blankCharacter = 1,  // separates fields
    quoteCharacter = 2,  // opens and closes a quoted text
    recordLetter = 4,    // of a known record
    elementType = 8,     // type letter of a line element
    lineKey = 16,        // key of a line element
    textKey = 32,        // key of a text
};

inline constexpr std::array<uint8_t, 256> characterClasses = [] {
    struct Members {
        CharacterClass characterClass;
        std::string_view characters;
    };
    constexpr Members members[] = {
        {blankCharacter, " \t"}, {quoteCharacter, "\"'`%"}, {recordLetter, "*DGKLRSTUV"},
        {elementType, "CKLPR"},  {lineKey, "KMRSUX"},       {textKey, "DFHKUX"},
    };
    std::array<uint8_t, 256> classes{};
    for (const Members& each : members) {
        for (const char c : each.characters) classes[static_cast<unsigned char>(c)] |= each.characterClass;
    }
    return classes;
}();

constexpr bool Is(char c, CharacterClass characterClass) {
    return (characterClasses[static_cast<unsigned char>(c)] & characterClass) != 0;
}

}  // namespace vemrado
