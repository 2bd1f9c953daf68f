#include "map/number_text.h"

#include <clocale>
#include <cstdlib>
#include <limits>
#include <string>

namespace vemrado::map {
namespace {

// Exact: an integer below 2^53 over a power of ten that a double holds is rounded once.
constexpr size_t mostExactDigits = 15;
constexpr double powersOfTen[] = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// What the C library makes of it. Nothing that it could take for a locale's decimal point is handed on but a
// full stop.
RealText ReadOddReal(std::string_view text) {
    constexpr std::string_view ofNumbers =
        "0123456789+-.abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_()\t\n\v\f\r ";
    std::string copy(text.substr(0, text.find_first_not_of(ofNumbers)));
    const char decimalPoint = *std::localeconv()->decimal_point;
    for (char& c : copy) {
        if (c == '.') c = decimalPoint;
    }
    char* end = nullptr;
    const double value = std::strtod(copy.c_str(), &end);
    const auto length = static_cast<size_t>(end - copy.c_str());
    return {length == 0 ? 0 : value, length};
}

}  // namespace

RealText ReadReal(std::string_view text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    const bool negative = at != end && *at == '-';
    if (negative) ++at;
    const char* const first = at;
    uint64_t digits = 0;
    for (; at != end && IsDigit(*at); ++at) digits = digits * 10 + static_cast<uint64_t>(*at - '0');
    size_t count = static_cast<size_t>(at - first);
    size_t decimals = 0;
    if (at != end && *at == '.') {
        const char* const stop = at;
        for (++at; at != end && IsDigit(*at); ++at) digits = digits * 10 + static_cast<uint64_t>(*at - '0');
        decimals = static_cast<size_t>(at - stop) - 1;
        count += decimals;
    }
    if (at != end || count == 0 || count > mostExactDigits) return ReadOddReal(text);
    const double value = static_cast<double>(digits) / powersOfTen[decimals];
    return {negative ? -value : value, text.size()};
}

IntegerText ReadInteger(std::string_view text) {
    constexpr int64_t largest = std::numeric_limits<int32_t>::max();
    size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    const int64_t limit = negative ? largest + 1 : largest;
    int64_t value = 0;
    bool outOfRange = false;
    const size_t first = at;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        value = value * 10 + (text[at] - '0');
        if (value > limit) {
            value = limit;
            outOfRange = true;
        }
    }
    if (at == first) return {};
    return {static_cast<int32_t>(negative ? -value : value), at, outOfRange};
}

}  // namespace vemrado::map
