// Numbers as the fields of a map file have them, with what does not belong to them.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vemrado::map {

struct RealText {
    double value = 0;
    size_t length = 0;  // characters that belong to the number; 0: there is none
};

struct IntegerText {
    int32_t value = 0;  // the nearest one that 32 bits hold
    size_t length = 0;
    bool outOfRange = false;
};

inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// A sign and a full stop, if any, and then a digit.
inline bool StartsNumber(std::string_view text) {
    const size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const size_t stop = text.size() > sign && text[sign] == '.' ? 1 : 0;
    return text.size() > sign + stop && IsDigit(text[sign + stop]);
}

// As strtod reads a text in the C locale.
RealText ReadReal(std::string_view text);

// As strtol reads a text in base 10, kept in 32 bits.
IntegerText ReadInteger(std::string_view text);

}  // namespace vemrado::map
