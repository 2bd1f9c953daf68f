// What is fuzzed: named functions over any bytes. A target must return normally whatever the bytes are; a
// broken invariant calls std::abort.

#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vemrado_fuzz {

using Run = void (*)(std::string_view bytes);

struct Target {
    Target(const char* targetName, Run targetRun) : name(targetName), run(targetRun), next(first) {
        first = this;
    }

    const char* name;
    Run run;
    const Target* next;

    static inline const Target* first = nullptr;
};

inline const Target* FindTarget(std::string_view name) {
    const Target* target = Target::first;
    while (target != nullptr && name != target->name) target = target->next;
    return target;
}

// Ends the run as a find when the condition does not hold.
inline void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

// Takes a script of small numbers off the start of the bytes.
class Script {
  public:
    explicit Script(std::string_view scriptBytes) : bytes(scriptBytes) {}

    bool Done() const { return bytes.empty(); }
    std::string_view Rest() const { return bytes; }
    // The next byte, 0 at the end.
    unsigned int Byte() {
        if (bytes.empty()) return 0;
        const unsigned int value = static_cast<unsigned char>(bytes[0]);
        bytes.remove_prefix(1);
        return value;
    }
    // Of two bytes.
    unsigned int Word() {
        const unsigned int low = Byte();
        return low + 256 * Byte();
    }

  private:
    std::string_view bytes;
};

}  // namespace vemrado_fuzz
