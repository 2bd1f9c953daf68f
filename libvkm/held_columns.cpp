// Tables that have been read: batches in memory, which any number of streams hand on without a copy.

#include <cerrno>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "batch_stream.h"
#include "failure.h"
#include "vemrado/vkm_arrow.h"

using namespace vemrado::capi;

namespace vemrado::capi {
namespace {

// A schema or an array that somebody else made, until nobody shows anything of it any more.
template <typename Node>
struct Held {
    Held() = default;
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (node.release != nullptr) node.release(&node);
    }
    Node node{};
};

// What a node of ours that shows one of theirs points to, beside what it shows. Each node keeps all alive for
// itself, for a consumer may move it out of its parent.
template <typename Node>
struct Share {
    explicit Share(std::shared_ptr<const void> shown) : held(std::move(shown)) {}
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;
    ~Share() {
        for (Node& child : children)
            if (child.release != nullptr) child.release(&child);
        if (dictionary.release != nullptr) dictionary.release(&dictionary);
    }

    std::shared_ptr<const void> held;
    std::vector<Node> children;
    std::vector<Node*> places;
    Node dictionary{};
};

template <typename Node>
void ReleaseShare(Node* node) {
    delete static_cast<Share<Node>*>(node->private_data);
    node->release = nullptr;
}

// Makes *to show what `from` has, and one child more where there is one to show.
template <typename Node>
void Show(const Node& from, const std::shared_ptr<const void>& held, Node* to,
          const std::shared_ptr<const Held<Node>>& last = nullptr) {
    auto share = std::make_unique<Share<Node>>(held);
    share->children.resize(static_cast<size_t>(from.n_children) + (last ? 1 : 0), Node{});
    for (size_t i = 0; i < share->children.size(); ++i) {
        Node& child = share->children[i];
        share->places.push_back(&child);
        if (i < static_cast<size_t>(from.n_children)) {
            Show(*from.children[i], held, &child);
        } else {
            Show(last->node, last, &child);
        }
    }
    if (from.dictionary != nullptr) Show(*from.dictionary, held, &share->dictionary);
    *to = from;
    to->n_children = static_cast<int64_t>(share->children.size());
    to->children = share->places.empty() ? nullptr : share->places.data();
    to->dictionary = from.dictionary != nullptr ? &share->dictionary : nullptr;
    to->release = ReleaseShare<Node>;
    to->private_data = share.release();
}

bool SameText(const char* one, const char* other) {
    return std::string_view(one != nullptr ? one : "") == (other != nullptr ? other : "");
}

bool SameKind(const ArrowSchema& one, const ArrowSchema& other) {
    if (!SameText(one.format, other.format) || !SameText(one.name, other.name) ||
        one.n_children != other.n_children || (one.dictionary == nullptr) != (other.dictionary == nullptr))
        return false;
    for (int64_t i = 0; i < one.n_children; ++i)
        if (!SameKind(*one.children[i], *other.children[i])) return false;
    return one.dictionary == nullptr || SameKind(*one.dictionary, *other.dictionary);
}

using SharedSchema = std::shared_ptr<const Held<ArrowSchema>>;
using SharedBatch = std::shared_ptr<const Held<ArrowArray>>;

// --- A column that has one text in all rows of a batch ---

template <typename Structure>
void ReleaseNothing(Structure* structure) {
    structure->release = nullptr;
}

struct TextField : Held<ArrowSchema> {
    TextField(std::string column, bool large) : name(std::move(column)) {
        node.format = large ? "U" : "u";
        node.name = name.c_str();
        node.release = ReleaseNothing<ArrowSchema>;
    }
    std::string name;
};

template <typename Offset>
struct RepeatedText : Held<ArrowArray> {
    RepeatedText(const std::string& text, size_t rows) {
        letters.reserve(rows * text.size());
        offsets.reserve(rows + 1);
        offsets.push_back(0);
        for (size_t i = 0; i < rows; ++i) {
            letters += text;
            offsets.push_back(static_cast<Offset>(letters.size()));
        }
        buffers[1] = offsets.data();
        buffers[2] = letters.data();
        node.length = static_cast<int64_t>(rows);
        node.n_buffers = 3;
        node.buffers = buffers;
        node.release = ReleaseNothing<ArrowArray>;
    }
    std::string letters;
    std::vector<Offset> offsets;
    const void* buffers[3]{};
};

// --- Streams ---

struct NamedBatch {
    SharedBatch batch;
    size_t table;
};

size_t RowsOf(const ArrowArray& batch) {
    return static_cast<size_t>(batch.offset + batch.length);
}

class HeldStream : public BatchStream {
  public:
    explicit HeldStream(SharedSchema ofTables) : schema(std::move(ofTables)) {}

    void Add(const SharedBatch& batch, size_t table) { batches.push_back({batch, table}); }

    void AddTexts(std::string column, std::span<const char* const> ofTables) {
        texts.assign(ofTables.begin(), ofTables.end());
        for (const NamedBatch& one : batches) {
            const size_t letters = RowsOf(one.batch->node) * texts[one.table].size();
            largeTexts |= letters > std::numeric_limits<int32_t>::max();
        }
        textField = std::make_shared<TextField>(std::move(column), largeTexts);
    }

    void Schema(ArrowSchema* shown) override { Show(schema->node, schema, shown, textField); }

    void Batch(ArrowArray* array) override {
        if (next == batches.size()) return;
        const NamedBatch& one = batches[next];
        const ArrowArray& batch = one.batch->node;
        SharedBatch text;
        if (textField && largeTexts)
            text = std::make_shared<RepeatedText<int64_t>>(texts[one.table], RowsOf(batch));
        else if (textField)
            text = std::make_shared<RepeatedText<int32_t>>(texts[one.table], RowsOf(batch));
        Show(batch, one.batch, array, text);
        ++next;
    }

  private:
    SharedSchema schema;
    SharedSchema textField;  // null: no column is added
    std::vector<NamedBatch> batches;
    std::vector<std::string> texts;  // of each table
    bool largeTexts = false;
    size_t next = 0;
};

// --- Reading ---

vkm_status StatusOf(int errorNumber) {
    return errorNumber == ENOMEM      ? VKM_ERROR_MEMORY
           : errorNumber == ECANCELED ? VKM_ERROR_STOPPED
                                      : VKM_ERROR_READ;
}

void CheckAnswer(ArrowArrayStream& stream, int errorNumber) {
    if (errorNumber == 0) return;
    const char* reason = stream.get_last_error(&stream);
    const vkm_status status = StatusOf(errorNumber);
    throw Failure::WithText(status, reason != nullptr ? reason : vkm_status_text(status), {});
}

}  // namespace
}  // namespace vemrado::capi

struct vkm_columns {
    SharedSchema schema;
    std::vector<SharedBatch> batches;
};

namespace {

std::unique_ptr<vkm_columns> ReadToItsEnd(ArrowArrayStream& stream) {
    auto columns = std::make_unique<vkm_columns>();
    const auto schema = std::make_shared<Held<ArrowSchema>>();
    CheckAnswer(stream, stream.get_schema(&stream, &schema->node));
    Require(SameText(schema->node.format, "+s"), "vkm_columns_read: the stream has no columns");
    columns->schema = schema;
    while (true) {
        const auto batch = std::make_shared<Held<ArrowArray>>();
        CheckAnswer(stream, stream.get_next(&stream, &batch->node));
        if (batch->node.release == nullptr) return columns;
        columns->batches.push_back(batch);
    }
}

}  // namespace

vkm_columns* vkm_columns_read(ArrowArrayStream* stream, vkm_error** error) {
    vkm_columns* columns = nullptr;
    Guarded(error, [&] {
        Require(stream != nullptr && stream->release != nullptr,
                "vkm_columns_read: null, or a released stream");
        columns = ReadToItsEnd(*stream).release();
        return VKM_OK;
    });
    if (stream != nullptr && stream->release != nullptr) stream->release(stream);
    return columns;
}

const ArrowSchema* vkm_columns_schema(const vkm_columns* columns) {
    return columns != nullptr ? &columns->schema->node : nullptr;
}

size_t vkm_columns_count(const vkm_columns* columns) {
    return columns != nullptr ? columns->batches.size() : 0;
}

const ArrowArray* vkm_columns_batch(const vkm_columns* columns, size_t number) {
    return number < vkm_columns_count(columns) ? &columns->batches[number]->node : nullptr;
}

vkm_status vkm_columns_stream(const vkm_columns* const* tables, size_t count, const char* name,
                              const char* const* texts, ArrowArrayStream* stream, vkm_error** error) {
    return Guarded(error, [&] {
        Require(
            tables != nullptr && count > 0 && stream != nullptr && (name == nullptr) == (texts == nullptr),
            "vkm_columns_stream: null");
        *stream = {};
        for (size_t i = 0; i < count; ++i) {
            Require(tables[i] != nullptr && (texts == nullptr || texts[i] != nullptr),
                    "vkm_columns_stream: null");
            Require(SameKind(tables[0]->schema->node, tables[i]->schema->node),
                    "vkm_columns_stream: the tables have different columns");
        }
        auto made = std::make_unique<HeldStream>(tables[0]->schema);
        for (size_t i = 0; i < count; ++i)
            for (const SharedBatch& batch : tables[i]->batches) made->Add(batch, i);
        if (name != nullptr) made->AddTexts(name, {texts, count});
        BatchStream::HandOut(std::move(made), stream);
        return VKM_OK;
    });
}

void vkm_columns_free(vkm_columns* columns) {
    delete columns;
}
