// The number conversions against the C library's in the C locale.

#include <bit>
#include <cmath>
#include <cstdlib>
#include <string>

#include "support/numbers.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

bool SameReal(double left, double right) {
    return std::bit_cast<uint64_t>(left) == std::bit_cast<uint64_t>(right) ||
           (std::isnan(left) && std::isnan(right));
}

void CompareNumbers(std::string_view bytes) {
    const std::string text(bytes.substr(0, bytes.find('\0')));
    const double expected = std::strtod(text.c_str(), nullptr);
    Require(SameReal(vemrado::ParseReal(text), expected), "a real as strtod reads it");
    if (!text.empty()) {
        const std::string around(vemrado::numbers::loadedCharacters + 1, '7');
        const std::string buffered = around + text + around;
        const std::string_view field = std::string_view(buffered).substr(around.size(), text.size());
        const double value = vemrado::ParseBufferedReal(field);
        Require(SameReal(value, expected), "a buffered real as strtod reads it");
    }
    const long long integer = std::strtoll(text.c_str(), nullptr, 10);
    const long long limited = integer > INT32_MAX ? INT32_MAX : integer < INT32_MIN ? INT32_MIN : integer;
    Require(vemrado::ParseInteger(text) == limited, "an integer as strtol reads it, in 32 bits");
}

const Target target("numbers", CompareNumbers);

}  // namespace
}  // namespace vemrado_fuzz
