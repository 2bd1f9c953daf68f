// A map keyed by the integer codes of the symbology.
//
// Entries stand one behind the other, in the order of their insertion; a lookup reads a bucket and the
// entries of its chain, which is short whatever the codes are: codes come in steps of all sizes, so they are
// mixed before they choose a bucket. Insertions throw std::bad_alloc when the pool has nothing, and leave the
// map as it was.

#pragma once

#include <cstdint>

#include "support/containers.h"

namespace vemrado {

constexpr size_t bucketCountWhenRead = 1009;

template <class Value>
class CodeIndex {
  public:
    struct Entry {
        int32_t code;
        uint32_t next;  // of its chain
        Value value;
    };

    // Without entries, and with the buckets for the reading of a file; more come with the entries.
    void Prepare() {
        Clear();
        MakeBuckets(bucketCountWhenRead);
    }
    void Clear() {
        entries.clear();
        buckets.clear();
    }

    // Null when the code has no entry. Valid until the next insertion.
    const Value* Find(int32_t code) const {
        if (buckets.empty()) return nullptr;
        for (uint32_t at = buckets[BucketOf(code)]; at != none; at = entries[at].next) {
            if (entries[at].code == code) return &entries[at].value;
        }
        return nullptr;
    }
    Value* Find(int32_t code) { return const_cast<Value*>(static_cast<const CodeIndex*>(this)->Find(code)); }

    // The first value of a code stays.
    void Add(int32_t code, const Value& value) {
        if (Find(code) == nullptr) Append(code, value);
    }
    // The last value of a code counts.
    void Set(int32_t code, const Value& value) {
        if (Value* found = Find(code)) {
            *found = value;
        } else {
            Append(code, value);
        }
    }

    Array<Entry>& Entries() { return entries; }
    const Array<Entry>& Entries() const { return entries; }

    // How many entries a lookup may look at.
    size_t LongestChain() const {
        size_t longest = 0;
        for (const uint32_t first : buckets) {
            size_t length = 0;
            for (uint32_t at = first; at != none; at = entries[at].next) ++length;
            longest = length > longest ? length : longest;
        }
        return longest;
    }

  private:
    static constexpr uint32_t none = 0xFFFFFFFFu;

    size_t BucketOf(int32_t code) const {
        auto mixed = static_cast<uint32_t>(code);
        mixed = (mixed ^ mixed >> 16) * 0x7FEB352Du;
        mixed = (mixed ^ mixed >> 15) * 0x846CA68Bu;
        mixed ^= mixed >> 16;
        return static_cast<size_t>(mixed * uint64_t{buckets.size()} >> 32);
    }

    void Append(int32_t code, const Value& value) {
        if (entries.size() >= buckets.size()) MakeBuckets(2 * entries.size() + 1);
        entries.push_back({code, none, value});
        Link(static_cast<uint32_t>(entries.size() - 1));
    }

    void MakeBuckets(size_t count) {
        Array<uint32_t>(count, none).swap(buckets);
        for (uint32_t at = 0; at < entries.size(); ++at) Link(at);
    }

    void Link(uint32_t at) {
        uint32_t& first = buckets[BucketOf(entries[at].code)];
        entries[at].next = first;
        first = at;
    }

    Array<uint32_t> buckets;  // the first entry of each chain
    Array<Entry> entries;
};

}  // namespace vemrado
