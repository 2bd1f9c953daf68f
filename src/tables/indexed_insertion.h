// The arrays of the colour table grow by insertion: an entry at an index below the count moves what stands
// there and behind it up one place; one at or beyond the count makes the array that long.
//
// Taken literally, entries in descending order cost the square of their number. So entries are collected and
// the array is built once: from the last entry to the first, each takes the place that is the index-th of
// those still free, which a tree of counts finds in logarithmic time.

#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "support/containers.h"

namespace vemrado {

// Indices come from a file; this bound keeps an array in some hundred megabytes whatever the file says.
constexpr int32_t largestTableIndex = 16777215;

// Which of the places 0 to count - 1 are free.
class FreePlaces {
  public:
    explicit FreePlaces(size_t count) : freeBelow(count + 1) {
        // Node i counts the free places of the lowbit(i) places that end at place i - 1.
        for (size_t i = 1; i <= count; ++i) freeBelow[i] = static_cast<uint32_t>(i & (0 - i));
    }

    // The index-th free place, from 0; it is not free afterwards. There must be one.
    size_t Take(size_t index) {
        size_t node = 0;
        for (size_t step = std::bit_floor(freeBelow.size() - 1); step != 0; step /= 2) {
            const size_t next = node + step;
            if (next >= freeBelow.size()) continue;
            if (freeBelow[next] > index) {
                --freeBelow[next];  // the place lies in this node's range
            } else {
                index -= freeBelow[next];
                node = next;
            }
        }
        return node;
    }

  private:
    Array<uint32_t> freeBelow;
};

template <class Value>
class IndexedInsertion {
  public:
    // Entries go into target, at Finish.
    explicit IndexedInsertion(Array<Value>& targetArray) : target(targetArray), count(targetArray.size()) {}

    // An index below 0 or beyond largestTableIndex, and one that the array cannot grow to, is skipped.
    void Add(int32_t index, const Value& value) {
        if (index < 0 || index > largestTableIndex || count >= largestCount) return;
        const size_t place = static_cast<size_t>(index);
        if (place >= count && !CanGrowTo(place + 1)) return;
        ascending = ascending && (entries.empty() || entries.back().place < place);
        entries.push_back({place, value});
        count = std::max(count, place) + 1;
    }

    void Finish() {
        if (ascending) {
            // No entry has more behind it than the array began with.
            for (const Entry& entry : entries) Insert(entry);
        } else {
            BuildFromTheEnd();
        }
    }

  private:
    struct Entry {
        size_t place;
        Value value;
    };

    // Reached only by a file of as many lines.
    static constexpr size_t largestCount = 2 * (static_cast<size_t>(largestTableIndex) + 1);

    bool CanGrowTo(size_t newCount) {
        try {
            if (newCount > target.capacity()) target.reserve(std::max(newCount, 2 * target.capacity()));
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }

    void Insert(const Entry& entry) {
        if (entry.place < target.size()) {
            target.insert(target.begin() + static_cast<ptrdiff_t>(entry.place), entry.value);
        } else {
            target.resize(entry.place + 1);
            target.back() = entry.value;
        }
    }

    void BuildFromTheEnd() {
        FreePlaces places(count);
        Array<Value> built(count);
        Array<bool> taken(count);
        for (size_t i = entries.size(); i-- > 0;) {
            const size_t place = places.Take(entries[i].place);
            built[place] = entries[i].value;
            taken[place] = true;
        }
        // What was there before keeps its order; the places that the array grew by stay 0.
        size_t place = 0;
        for (const Value& value : target) {
            while (taken[place]) ++place;
            built[place++] = value;
        }
        target.swap(built);
    }

    Array<Value>& target;
    size_t count;  // of the array when all entries are in
    Array<Entry> entries;
    bool ascending = true;
};

}  // namespace vemrado
