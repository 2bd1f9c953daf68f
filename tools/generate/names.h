// Names of places, streets and waters, in Windows-1250.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace generate {

// UTF-8 to Windows-1250; a letter that is neither ASCII nor Czech becomes a question mark.
std::string ToWindows1250(std::string_view utf8);

struct Names {
    Names();

    std::vector<std::string> towns;
    std::vector<std::string> mainRoads;
    std::vector<std::string> streets;
    std::vector<std::string> fields;
    std::vector<std::string> forests;
    std::vector<std::string> streams;
    std::string square;
    std::string church;
    std::string park;
    std::string cemetery;
    std::string sports;
    std::string works;
    std::string pond;
    std::string upper;  // of two districts of one town
    std::string lower;
};

// The name that a key stands for.
inline const std::string& NameFor(const std::vector<std::string>& names, uint64_t key) {
    return names[static_cast<std::size_t>(key % names.size())];
}

}  // namespace generate
