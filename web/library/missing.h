// What the project's C++20 uses and the library of the compiler to WebAssembly does not have: conversions of
// reals, bit_cast, and the range forms of the common algorithms. Read before every source of that build.

#pragma once

#ifdef __cplusplus

#include <algorithm>
#include <bit>
#include <charconv>
#include <compare>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#if !defined(_LIBCPP_VERSION) || _LIBCPP_VERSION >= 14000
#error "This library is newer: see what of this file it still lacks"
#endif

namespace std {

// --- Numbers ---

// The C library rounds correctly and always reads as in the C locale. It needs a zero at the end, so the
// number is copied up to the last character that one can have.
inline from_chars_result from_chars(const char* first, const char* last, double& value,
                                    chars_format format = chars_format::general) {
    if (first == last || *first == '+' || *first == ' ') return {first, errc::invalid_argument};
    const char* end = first;
    while (end != last && *end != '\0' && strchr("+-.0123456789abcdefABCDEFnNiItTyYpP", *end)) ++end;
    const bool hex = format == chars_format::hex;
    const bool negative = hex && *first == '-';
    const string number = (hex ? (negative ? "-0x" : "0x") : "") + string(first + (negative ? 1 : 0), end);
    char* stop = nullptr;
    const double read = strtod(number.c_str(), &stop);
    const auto taken = stop - number.c_str() - (hex ? 2 : 0);
    if (taken <= (negative ? 1 : 0)) return {first, errc::invalid_argument};
    value = read;
    return {first + taken, errc()};
}

inline to_chars_result to_chars(char* first, char* last, double value, chars_format format, int precision) {
    const char* pattern = format == chars_format::fixed        ? "%.*f"
                          : format == chars_format::scientific ? "%.*e"
                                                               : "%.*g";
    const int length = snprintf(first, static_cast<size_t>(last - first), pattern, precision, value);
    if (length < 0 || length >= last - first) return {last, errc::value_too_large};
    return {first + length, errc()};
}

// The shortest text that reads as the same number.
inline to_chars_result to_chars(char* first, char* last, double value) {
    to_chars_result result{last, errc::value_too_large};
    for (int precision = 1; precision <= 17; ++precision) {
        result = to_chars(first, last, value, chars_format::general, precision);
        if (result.ec != errc()) return result;
        *result.ptr = '\0';
        if (!(strtod(first, nullptr) != value)) return result;
    }
    return result;
}

template <typename To, typename From>
constexpr To bit_cast(const From& from) noexcept {
    static_assert(sizeof(To) == sizeof(From));
    return __builtin_bit_cast(To, from);
}

// --- Orders of texts ---

inline strong_ordering operator<=>(const string& a, const string& b) noexcept {
    return a.compare(b) <=> 0;
}
inline strong_ordering operator<=>(string_view a, string_view b) noexcept {
    return a.compare(b) <=> 0;
}

// --- Algorithms on ranges ---

namespace ranges {

namespace detail {
template <typename Compare, typename Projection>
auto Projected(Compare compare, Projection projection) {
    return [compare, projection](const auto& a, const auto& b) {
        return std::invoke(compare, std::invoke(projection, a), std::invoke(projection, b));
    };
}
template <typename Test, typename Projection>
auto Tested(Test test, Projection projection) {
    return [test, projection](auto&& value) -> bool {
        return std::invoke(test, std::invoke(projection, value));
    };
}
}  // namespace detail

template <typename Range, typename Compare = less, typename Projection = identity>
void sort(Range&& range, Compare compare = {}, Projection projection = {}) {
    std::sort(std::begin(range), std::end(range), detail::Projected(compare, projection));
}
template <typename Range, typename Compare = less, typename Projection = identity>
void stable_sort(Range&& range, Compare compare = {}, Projection projection = {}) {
    std::stable_sort(std::begin(range), std::end(range), detail::Projected(compare, projection));
}
template <typename Range, typename Iterator, typename Compare = less, typename Projection = identity>
void nth_element(Range&& range, Iterator nth, Compare compare = {}, Projection projection = {}) {
    std::nth_element(std::begin(range), nth, std::end(range), detail::Projected(compare, projection));
}
template <typename Range, typename Compare = less, typename Projection = identity>
auto max_element(Range&& range, Compare compare = {}, Projection projection = {}) {
    return std::max_element(std::begin(range), std::end(range), detail::Projected(compare, projection));
}
template <typename Range, typename Compare = less, typename Projection = identity>
auto min_element(Range&& range, Compare compare = {}, Projection projection = {}) {
    return std::min_element(std::begin(range), std::end(range), detail::Projected(compare, projection));
}
template <typename Range, typename Value, typename Compare = less, typename Projection = identity>
auto lower_bound(Range&& range, const Value& value, Compare compare = {}, Projection projection = {}) {
    return std::lower_bound(std::begin(range), std::end(range), value,
                            [&](const auto& element, const auto& wanted) {
                                return std::invoke(compare, std::invoke(projection, element), wanted);
                            });
}
template <typename Range, typename Value, typename Compare = less, typename Projection = identity>
auto upper_bound(Range&& range, const Value& value, Compare compare = {}, Projection projection = {}) {
    return std::upper_bound(std::begin(range), std::end(range), value,
                            [&](const auto& wanted, const auto& element) {
                                return std::invoke(compare, wanted, std::invoke(projection, element));
                            });
}
template <typename Range, typename Value, typename Compare = less, typename Projection = identity>
bool binary_search(Range&& range, const Value& value, Compare compare = {}, Projection projection = {}) {
    const auto found = ranges::lower_bound(range, value, compare, projection);
    return found != std::end(range) && !std::invoke(compare, value, std::invoke(projection, *found));
}
template <typename Range, typename Test, typename Projection = identity>
bool all_of(Range&& range, Test test, Projection projection = {}) {
    return std::all_of(std::begin(range), std::end(range), detail::Tested(test, projection));
}
template <typename Range, typename Test, typename Projection = identity>
bool any_of(Range&& range, Test test, Projection projection = {}) {
    return std::any_of(std::begin(range), std::end(range), detail::Tested(test, projection));
}
template <typename Range, typename Test, typename Projection = identity>
bool none_of(Range&& range, Test test, Projection projection = {}) {
    return std::none_of(std::begin(range), std::end(range), detail::Tested(test, projection));
}
template <typename Range, typename Test, typename Projection = identity>
auto count_if(Range&& range, Test test, Projection projection = {}) {
    return std::count_if(std::begin(range), std::end(range), detail::Tested(test, projection));
}
template <typename Range, typename Value>
auto count(Range&& range, const Value& value) {
    return std::count(std::begin(range), std::end(range), value);
}
template <typename Range, typename Test, typename Projection = identity>
auto find_if(Range&& range, Test test, Projection projection = {}) {
    return std::find_if(std::begin(range), std::end(range), detail::Tested(test, projection));
}
template <typename Range, typename Value, typename Projection = identity>
auto find(Range&& range, const Value& value, Projection projection = {}) {
    return std::find_if(std::begin(range), std::end(range),
                        [&](auto&& element) { return std::invoke(projection, element) == value; });
}
template <typename Range, typename Value>
bool contains(Range&& range, const Value& value) {
    return ranges::find(range, value) != std::end(range);
}
template <typename Range, typename Use, typename Projection = identity>
void for_each(Range&& range, Use use, Projection projection = {}) {
    for (auto&& value : range) std::invoke(use, std::invoke(projection, value));
}
template <typename Range, typename Output, typename Change, typename Projection = identity>
void transform(Range&& range, Output output, Change change, Projection projection = {}) {
    std::transform(std::begin(range), std::end(range), output,
                   [&](auto&& value) { return std::invoke(change, std::invoke(projection, value)); });
}
template <typename Range, typename Output>
auto copy(Range&& range, Output output) {
    return std::copy(std::begin(range), std::end(range), output);
}
template <typename Range, typename Output, typename Test, typename Projection = identity>
auto copy_if(Range&& range, Output output, Test test, Projection projection = {}) {
    return std::copy_if(std::begin(range), std::end(range), output, detail::Tested(test, projection));
}
template <typename Range, typename Value>
void fill(Range&& range, const Value& value) {
    std::fill(std::begin(range), std::end(range), value);
}
template <typename Range>
void reverse(Range&& range) {
    std::reverse(std::begin(range), std::end(range));
}
template <typename Range, typename Test, typename Value>
void replace_if(Range&& range, Test test, const Value& value) {
    std::replace_if(std::begin(range), std::end(range), test, value);
}
template <typename Range, typename Other, typename Same = equal_to, typename First = identity,
          typename Second = identity>
bool equal(Range&& range, Other&& other, Same same = {}, First first = {}, Second second = {}) {
    return std::equal(
        std::begin(range), std::end(range), std::begin(other), std::end(other),
        [&](auto&& a, auto&& b) { return std::invoke(same, std::invoke(first, a), std::invoke(second, b)); });
}
template <typename Range, typename Other>
auto search(Range&& range, Other&& other) {
    return std::search(std::begin(range), std::end(range), std::begin(other), std::end(other));
}

}  // namespace ranges
}  // namespace std

#endif
