// Number conversions, the same on every system and in every locale.

#pragma once

#include <cstdint>
#include <string_view>

namespace vemrado {

// The number at the start of the text as strtod reads it in the C locale, 0 when there is none. Too large gives
// infinity, too small a denormal number or 0.
double ParseReal(std::string_view text);

// The number at the start of the text as strtol reads it in base 10 (atoi of the table files too), 0 when there is
// none. A value past the 32-bit limits becomes the limit.
int32_t ParseInteger(std::string_view text);

}  // namespace vemrado
