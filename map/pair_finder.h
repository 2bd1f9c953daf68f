// Finds equal items of two lists, each used once: the items of one go in, those of the other take their
// equals out. 12 bytes an item; what equal items there are in any number costs no time.

#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace vemrado::map {

class PairFinder {
  public:
    static constexpr uint32_t none = UINT32_MAX;

    // For up to that many items, whose numbers are below limit.
    PairFinder(size_t count, size_t limit) : slots(std::bit_ceil(2 * count + 2), none), next(limit, none) {}

    // Before the first Take. equal(item): whether an item that is there already is equal to this one.
    template <typename Equal>
    void Add(uint32_t item, uint64_t hash, Equal equal) {
        uint32_t& slot = slots[Find(hash, equal)];
        if (slot == none) {
            slot = item;
            next[item] = item;  // nothing behind it, and itself not taken
        } else {
            next[item] = next[slot];
            next[slot] = item;
        }
    }

    // An item that is equal and was not taken before; none when there is none.
    template <typename Equal>
    uint32_t Take(uint64_t hash, Equal equal) {
        const uint32_t first = slots[Find(hash, equal)];
        if (first == none) return none;
        const uint32_t taken = next[first];
        if (taken == none) return none;
        next[first] = taken == first ? none : next[taken];
        return taken;
    }

  private:
    template <typename Equal>
    size_t Find(uint64_t hash, Equal equal) const {
        size_t place = hash & (slots.size() - 1);
        while (slots[place] != none && !equal(slots[place])) place = (place + 1) & (slots.size() - 1);
        return place;
    }

    std::vector<uint32_t> slots;
    // A list for each first item: next[first] is the one to be taken now; the last is the first itself.
    std::vector<uint32_t> next;
};

}  // namespace vemrado::map
