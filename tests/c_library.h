// The C library's strtod as the standard has it, for comparison.

#pragma once

#include <cstdlib>

// Where nothing is a number the result is 0; MinGW's library gives a sign that it has passed over.
inline double StandardStrtod(const char* text) {
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    return end == text ? 0.0 : value;
}
