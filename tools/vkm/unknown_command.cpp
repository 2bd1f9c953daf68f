#include "unknown_command.h"

#include <algorithm>
#include <numeric>

#include "translations.h"

namespace vemrado::tools {
namespace {

// Letters to insert, remove, change or swap with their neighbour until one word is the other.
size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> before(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> current(b.size() + 1);
    std::iota(last.begin(), last.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t change = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            current[j] = std::min({last[j] + 1, current[j - 1] + 1, change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                current[j] = std::min(current[j], before[j - 2] + 1);
        }
        before.swap(last);
        last.swap(current);
    }
    return last[b.size()];
}

}  // namespace

std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names) {
    constexpr size_t shortestBeginning = 2;
    constexpr size_t longestWord = 40;
    if (word.size() > longestWord) return {};
    std::string_view nearest;
    size_t smallest = std::max<size_t>(word.size() / 3, 1) + 1;
    for (const std::string_view name : names) {
        if (word.size() >= shortestBeginning && name.starts_with(word)) return name;
        const size_t distance = EditDistance(word, name);
        if (distance < smallest) {
            smallest = distance;
            nearest = name;
        }
    }
    return nearest;
}

std::string UnknownCommandMessage(const std::string& word, const std::vector<std::string_view>& names) {
    const std::string_view nearest = NearestName(word, names);
    if (nearest.empty()) {
        std::string all;
        for (const std::string_view name : names) all.append(all.empty() ? "" : ", ").append(name);
        return Filled("there is no command '{}'; the commands are {}", {word, all});
    }
    return Filled("there is no command '{}'; did you mean '{}'?", {word, nearest});
}

}  // namespace vemrado::tools
