// Columns in memory as the Arrow C data interface hands them over: each column fills its buffers row by row
// and then gives them away.

#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "map/geometry.h"
#include "vemrado/vkm_arrow.h"

namespace vemrado::map {

// Bytes that grow.
class ArrowBuffer {
  public:
    template <typename Value>
    void Push(Value value) {
        std::memcpy(Grow(sizeof value), &value, sizeof value);
    }
    void Append(const void* from, size_t count) {
        if (count != 0) CopyFew(Grow(count), static_cast<const uint8_t*>(from), count);
    }
    void AppendZeros(size_t count) {
        if (count != 0) std::memset(Grow(count), 0, count);
    }
    // Room for more at the end, that the caller fills at once.
    template <typename Value>
    Value* Extend(size_t count) {
        return reinterpret_cast<Value*>(Grow(count * sizeof(Value)));
    }
    // The same, and room of the caller's for a few more behind them, which are not kept.
    template <typename Value>
    Value* ExtendLoosely(size_t count, size_t more) {
        auto* const begin = reinterpret_cast<Value*>(Grow((count + more) * sizeof(Value)));
        used -= more * sizeof(Value);
        return begin;
    }
    // Copies of a text one behind the other.
    void Repeat(std::string_view text, size_t times);
    uint8_t& Last() { return bytes.get()[used - 1]; }
    template <typename Value>
    Value LastOf() const {
        Value value;
        std::memcpy(&value, bytes.get() + used - sizeof value, sizeof value);
        return value;
    }
    size_t Size() const { return used; }
    // Gets that much room when the first bytes come.
    void Expect(size_t count) { expected = count; }
    // Never null, as consumers like it.
    const void* Data() const { return bytes ? static_cast<const void*>(bytes.get()) : &nothing; }

  private:
    struct Free {
        void operator()(uint8_t* block) const { std::free(block); }
    };

    // Nearly every run is short: a call would cost more than the bytes. The last block overlaps the one
    // before.
    template <size_t block>
    static void CopyBlocks(uint8_t* to, const uint8_t* from, size_t count) {
        for (size_t i = 0; i < count - block; i += block) std::memcpy(to + i, from + i, block);
        std::memcpy(to + count - block, from + count - block, block);
    }
    static void CopyFew(uint8_t* to, const uint8_t* from, size_t count) {
        if (count > 256) return static_cast<void>(std::memcpy(to, from, count));
        if (count >= 16) return CopyBlocks<16>(to, from, count);
        if (count >= 4) return CopyBlocks<4>(to, from, count);
        return CopyBlocks<1>(to, from, count);
    }
    uint8_t* Grow(size_t count) {
        if (room - used < count) [[unlikely]]
            MakeRoom(count);
        used += count;
        return bytes.get() + used - count;
    }
    void MakeRoom(size_t count);

    static constexpr int64_t nothing = 0;
    std::unique_ptr<uint8_t, Free> bytes;
    size_t used = 0;
    size_t room = 0;
    size_t expected = 0;
};

// What a column is. The format is one of Arrow's: i, l, g, u, z, +l, +w:2 and +s.
struct ColumnType {
    std::string name;
    std::string format;
    bool nullable = false;
    std::vector<ColumnType> children = {};
    std::vector<std::pair<std::string, std::string>> metadata = {};
};

// Fills a schema of the consumer's.
void ExportSchema(const ColumnType& type, ArrowSchema* schema);

class ArrowColumn {
  public:
    explicit ArrowColumn(const ColumnType& columnType);

    // A row of a column of that type.
    void Add(int32_t value) { AddFixed(value); }
    void Add(int64_t value) { AddFixed(value); }
    void Add(double value) { AddFixed(value); }
    void Add(std::string_view text) {
        EndNulls();
        data.Append(text.data(), text.size());
        offsets.Push(Offset(data.Size()));
        EndRow();
    }
    void AddNull() { ++waitingNulls; }
    // Of a column that takes no nulls.
    template <typename Value>
    void AddRequired(Value value) {
        data.Push(value);
        ++rows;
    }

    // As many rows, of a column without nulls.
    void AddAll(std::span<const int32_t> values) { AddAllFixed(values); }
    void AddAll(std::span<const double> values) { AddAllFixed(values); }
    void AddLetters(std::span<const char> letters);  // texts of one byte
    void AddRepeated(std::string_view text, size_t times);

    // Rows of points (+w:2 of doubles).
    void AddPoints(std::span<const Point> points);

    // The rows added to the child since the last list become one (+l).
    ArrowColumn& Items() { return children[0]; }
    void EndList() {
        EndNulls();
        offsets.Push(Offset(static_cast<size_t>(children[0].rows)));
        EndRow();
    }

    void EndRequiredList() {
        offsets.Push(Offset(static_cast<size_t>(children[0].rows)));
        ++rows;
    }

    // The columns of a struct, to each of which a row has been added (+s).
    ArrowColumn& Field(size_t place) { return children[place]; }
    void EndStruct() { EndRow(); }

    int64_t Rows() const { return rows + waitingNulls; }

    // Moves the rows into an array of the consumer's; the column is empty then.
    void Export(ArrowArray* array);

  private:
    template <typename Value>
    void AddFixed(Value value) {
        EndNulls();
        data.Push(value);
        EndRow();
    }
    template <typename Value>
    void AddAllFixed(std::span<const Value> values) {
        data.Append(values.data(), values.size_bytes());
        rows += static_cast<int64_t>(values.size());
    }
    void AddOffsets(size_t first, size_t step, size_t count);
    void EndRow() {
        if (nullable) {
            if (rows % 8 == 0) validity.Push(uint8_t{0});
            validity.Last() = static_cast<uint8_t>(validity.Last() | 1 << (rows % 8));
        }
        ++rows;
    }
    // Nulls come in long runs; they are written when something follows them.
    void EndNulls() {
        if (waitingNulls > 0) WriteNulls();
    }
    void WriteNulls();
    // Offsets have 32 bits. Throws std::length_error.
    static int32_t Offset(size_t place) {
        if (place > INT32_MAX) [[unlikely]]
            RefuseOffset();
        return static_cast<int32_t>(place);
    }
    [[noreturn]] static void RefuseOffset();

    void ExpectAsMuchAs(const ArrowColumn& column);

    struct Exported;
    static void Release(ArrowArray* array);

    ColumnType type;
    bool nullable;
    bool withBytes;  // texts or binary values
    bool withOffsets;
    size_t width;  // of a fixed value, bytes
    int64_t rows = 0;
    int64_t nulls = 0;
    int64_t waitingNulls = 0;  // rows at the end
    ArrowBuffer validity;
    ArrowBuffer offsets;
    ArrowBuffer data;
    std::vector<ArrowColumn> children;
};

}  // namespace vemrado::map
