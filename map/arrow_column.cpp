#include "map/arrow_column.h"

#include <algorithm>
#include <stdexcept>

namespace vemrado::map {
namespace {

// Key and value pairs in Arrow's bytes: numbers of 32 bits in the machine's order before each.
std::string MetadataBytes(const ColumnType& type) {
    std::string bytes;
    const auto number = [&](size_t value) {
        const auto narrow = static_cast<int32_t>(value);
        bytes.append(reinterpret_cast<const char*>(&narrow), sizeof narrow);
    };
    number(type.metadata.size());
    for (const auto& [key, value] : type.metadata) {
        number(key.size());
        bytes += key;
        number(value.size());
        bytes += value;
    }
    return bytes;
}

struct ExportedSchema {
    std::string name;
    std::string format;
    std::string metadata;
    std::vector<ArrowSchema> children;
    std::vector<ArrowSchema*> pointers;
};

void ReleaseSchema(ArrowSchema* schema) {
    for (int64_t i = 0; i < schema->n_children; ++i) {
        ArrowSchema* child = schema->children[i];
        if (child->release != nullptr) child->release(child);
    }
    delete static_cast<ExportedSchema*>(schema->private_data);
    schema->release = nullptr;
}

}  // namespace

void ExportSchema(const ColumnType& type, ArrowSchema* schema) {
    *schema = {};
    auto kept = std::make_unique<ExportedSchema>();
    kept->name = type.name;
    kept->format = type.format;
    kept->children.resize(type.children.size());
    schema->flags = type.nullable ? ARROW_FLAG_NULLABLE : 0;
    if (!type.metadata.empty()) {
        kept->metadata = MetadataBytes(type);
        schema->metadata = kept->metadata.c_str();
    }
    for (ArrowSchema& child : kept->children) kept->pointers.push_back(&child);
    schema->name = kept->name.c_str();
    schema->format = kept->format.c_str();
    schema->n_children = static_cast<int64_t>(kept->children.size());
    schema->children = kept->pointers.data();
    schema->private_data = kept.release();
    schema->release = ReleaseSchema;
    try {
        for (size_t i = 0; i < type.children.size(); ++i) ExportSchema(type.children[i], schema->children[i]);
    } catch (...) {
        schema->release(schema);
        throw;
    }
}

void ArrowBuffer::MakeRoom(size_t count) {
    constexpr size_t least = 64;
    const size_t wanted = std::max({used + count, room == 0 ? expected : 2 * room, least});
    auto* grown = static_cast<uint8_t*>(std::realloc(bytes.get(), wanted));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(bytes.release());
    bytes.reset(grown);
    room = wanted;
}

void ArrowBuffer::Repeat(std::string_view text, size_t times) {
    // Short texts are copied whole words at a time, past their end.
    struct Word {
        char characters[16];
    } word{};
    if (text.empty() || text.size() > sizeof word) [[unlikely]] {
        for (; times > 0; --times) Append(text.data(), text.size());
        return;
    }
    CopyFew(reinterpret_cast<uint8_t*>(&word), reinterpret_cast<const uint8_t*>(text.data()), text.size());
    auto* to = ExtendLoosely<uint8_t>(text.size() * times, sizeof word);
    for (; times > 0; --times, to += text.size()) std::memcpy(to, &word, sizeof word);
}

ArrowColumn::ArrowColumn(const ColumnType& columnType)
    : type(columnType),
      nullable(type.nullable),
      withBytes(type.format == "u" || type.format == "z"),
      withOffsets(withBytes || type.format == "+l"),
      width(type.format == "i"                         ? sizeof(int32_t)
            : type.format == "l" || type.format == "g" ? sizeof(int64_t)
                                                       : 0),
      children(type.children.begin(), type.children.end()) {
    if (withOffsets) offsets.Push(int32_t{0});
}

void ArrowColumn::WriteNulls() {
    const auto count = static_cast<size_t>(waitingNulls);
    data.AppendZeros(count * width);
    if (withOffsets) {
        const int32_t end = offsets.LastOf<int32_t>();  // items of the next list may stand there already
        std::fill_n(offsets.Extend<int32_t>(count), count, end);
    }
    rows += waitingNulls;
    nulls += waitingNulls;
    waitingNulls = 0;
    validity.AppendZeros((static_cast<size_t>(rows) + 7) / 8 - validity.Size());
}

void ArrowColumn::AddLetters(std::span<const char> letters) {
    AddOffsets(data.Size() + 1, 1, letters.size());
    data.Append(letters.data(), letters.size());
}

void ArrowColumn::AddRepeated(std::string_view text, size_t times) {
    AddOffsets(data.Size() + text.size(), text.size(), times);
    data.Repeat(text, times);
}

// The ends of as many texts, of which the first ends there.
void ArrowColumn::AddOffsets(size_t first, size_t step, size_t count) {
    static_cast<void>(Offset(first + step * count));
    // Nearly every run is short, so four are written at a time, past the end.
    using Four = int32_t __attribute__((vector_size(16)));
    const auto begin = static_cast<int32_t>(first);
    const auto by = static_cast<int32_t>(step);
    Four ends = {begin, begin + by, begin + 2 * by, begin + 3 * by};
    const Four further = {4 * by, 4 * by, 4 * by, 4 * by};
    auto* const to = offsets.ExtendLoosely<int32_t>(count, 4);
    for (size_t i = 0; i < count; i += 4, ends += further) std::memcpy(to + i, &ends, sizeof ends);
    rows += static_cast<int64_t>(count);
}

void ArrowColumn::AddPoints(std::span<const Point> points) {
    static_assert(sizeof(Point) == 2 * sizeof(double));
    children[0].data.Append(points.data(), points.size_bytes());
    children[0].rows += static_cast<int64_t>(2 * points.size());
    rows += static_cast<int64_t>(points.size());
}

void ArrowColumn::RefuseOffset() {
    throw std::length_error("a batch of columns holds more than 2^31 entries; ask for fewer rows");
}

// The next rows are likely to be as large; memory that they do not reach costs nothing.
void ArrowColumn::ExpectAsMuchAs(const ArrowColumn& column) {
    const auto expect = [](ArrowBuffer& buffer, const ArrowBuffer& like) {
        buffer.Expect(like.Size() + like.Size() / 4);
    };
    expect(validity, column.validity);
    expect(offsets, column.offsets);
    expect(data, column.data);
    for (size_t i = 0; i < children.size(); ++i) children[i].ExpectAsMuchAs(column.children[i]);
}

struct ArrowColumn::Exported {
    ArrowColumn column;
    std::vector<const void*> buffers;
    std::vector<ArrowArray> children;
    std::vector<ArrowArray*> pointers;
};

void ArrowColumn::Release(ArrowArray* array) {
    for (int64_t i = 0; i < array->n_children; ++i) {
        ArrowArray* child = array->children[i];
        if (child->release != nullptr) child->release(child);
    }
    delete static_cast<Exported*>(array->private_data);
    array->release = nullptr;
}

void ArrowColumn::Export(ArrowArray* array) {
    *array = {};
    auto kept = std::make_unique<Exported>(Exported{ArrowColumn(type), {}, {}, {}});
    std::swap(kept->column, *this);
    ArrowColumn& column = kept->column;
    column.EndNulls();
    ExpectAsMuchAs(column);
    kept->buffers.push_back(column.nulls > 0 ? column.validity.Data() : nullptr);
    if (withOffsets) kept->buffers.push_back(column.offsets.Data());
    if (width != 0 || withBytes) kept->buffers.push_back(column.data.Data());
    kept->children.resize(column.children.size());
    for (ArrowArray& child : kept->children) kept->pointers.push_back(&child);
    array->length = column.rows;
    array->null_count = column.nulls;
    array->n_buffers = static_cast<int64_t>(kept->buffers.size());
    array->buffers = kept->buffers.data();
    array->n_children = static_cast<int64_t>(kept->children.size());
    array->children = kept->pointers.data();
    array->private_data = kept.release();
    array->release = Release;
    try {
        for (size_t i = 0; i < column.children.size(); ++i) column.children[i].Export(array->children[i]);
    } catch (...) {
        array->release(array);
        throw;
    }
}

}  // namespace vemrado::map
