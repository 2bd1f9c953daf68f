// The registered patterns, numbered from 1.

#include <deque>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "lock.h"
#include "zrv320/zrv320.h"

namespace {

constexpr uint8_t endCode = '@';
constexpr size_t largestNumber = INT16_MAX;

struct Pattern {
    std::vector<PatternElement> elements;
    std::string name;
};

// Around the lists; what was handed out is not changed any more.
standin::Lock patternLock;

// A deque: what was handed out stays where it is while more patterns come.
std::deque<Pattern> linePatterns;
std::deque<Pattern> pointPatterns;

int16_t Register(std::deque<Pattern>& patterns, const PatternElement* elements, const char* name) {
    if (elements == nullptr) return 0;
    try {
        const PatternElement* end = elements;
        while (end->code != endCode) ++end;
        Pattern pattern{std::vector<PatternElement>(elements, end + 1), name != nullptr ? name : ""};
        const standin::Holding holding(patternLock);
        if (patterns.size() == largestNumber) return 0;
        patterns.push_back(std::move(pattern));
        return static_cast<int16_t>(patterns.size());
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

const Pattern* Find(const std::deque<Pattern>& patterns, int number) {
    const standin::Holding holding(patternLock);
    if (number < 1 || static_cast<size_t>(number) > patterns.size()) return nullptr;
    return &patterns[static_cast<size_t>(number) - 1];
}

const PatternElement* Elements(const std::deque<Pattern>& patterns, int number) {
    const Pattern* pattern = Find(patterns, number);
    return pattern != nullptr ? pattern->elements.data() : nullptr;
}

const char* Name(const std::deque<Pattern>& patterns, int number) {
    const Pattern* pattern = Find(patterns, number);
    return pattern != nullptr ? pattern->name.c_str() : nullptr;
}

}  // namespace

int16_t setextpattline(const PatternElement* elements, const char* name) {
    return Register(linePatterns, elements, name);
}

int16_t setextpattpoint(const PatternElement* elements, const char* name) {
    return Register(pointPatterns, elements, name);
}

const PatternElement* ZrvLinePattern(int number) {
    return Elements(linePatterns, number);
}

const PatternElement* ZrvPointPattern(int number) {
    return Elements(pointPatterns, number);
}

const char* ZrvLinePatternName(int number) {
    return Name(linePatterns, number);
}

const char* ZrvPointPatternName(int number) {
    return Name(pointPatterns, number);
}

void ZrvClearPatterns(void) {
    const standin::Holding holding(patternLock);
    linePatterns.clear();
    pointPatterns.clear();
}
