// The two records that carry an element's data.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "support/containers.h"

namespace vemrado {

// Type of a line element: one of these letters' codes, typeUnknown for any other letter, typeNone for none.
inline constexpr std::string_view elementTypeLetters = "CKLPR";
enum : uint32_t { typeNone = 0, typeUnknown = 1 };

// One element of a line.
struct CVKMLineElement {
    double x = 0;
    double y = 0;
    double z = 0;  // never set from the file
    uint32_t type = typeNone;
    String code;             // K, as text
    double valueM = 1.0;     // M
    double valueR = 0;       // R
    int32_t symbolCode = 0;  // S; 0: no symbol
    double valueU = 0;       // U
};

// One text.
struct CVKMText {
    static constexpr size_t mostCharacters = 255;

    double x = 0;
    double y = 0;
    double z = 0;  // never set from the file
    char text[mostCharacters + 1] = {};
    int32_t valueD = 2;
    int32_t valueF = 1;
    double valueH = 1.7;
    int32_t code = 0;  // K
    double valueU = 0;

    // A longer text is cut.
    void SetText(std::string_view value) {
        const size_t length = value.size() < mostCharacters ? value.size() : mostCharacters;
        std::memcpy(text, value.data(), length);
        text[length] = '\0';
    }
};

}  // namespace vemrado
