#include <algorithm>
#include <deque>
#include <mutex>
#include <span>
#include <stdexcept>

#include "batch_stream.h"
#include "failure.h"
#include "map/columns.h"
#include "map/parcel_material.h"
#include "map_file.h"
#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace vemrado::capi {
namespace {

// Points of a batch at most, for lines of any length.
constexpr size_t heaviestBatch = 1 << 22;

// One passage over the map that fills the tables of one or more streams. It belongs to all of them.
class Passage {
  public:
    Passage(std::shared_ptr<Source> passageSource, Options passageOptions, std::span<const vkm_table> tables)
        : source(std::move(passageSource)), options(std::move(passageOptions)) {
        for (const vkm_table table : tables) outputs.emplace_back(static_cast<map::Table>(table), options);
        file = std::make_unique<MapFile>(source, options, false);
        WantWhatIsAskedFor();
    }

    void Schema(size_t table, ArrowSchema* schema) {
        const std::lock_guard lock(mutex);
        map::ExportSchema(outputs[table].columns.Type(), schema);
    }

    // Released at the end.
    void Batch(size_t table, ArrowArray* batch) {
        const std::lock_guard lock(mutex);
        *batch = {};
        Output& output = outputs[table];
        while (output.waiting.empty() && file) Read();
        if (file == nullptr && output.waiting.empty()) FinishParcels(output);
        if (output.waiting.empty() && failure) std::rethrow_exception(failure);
        if (output.waiting.empty()) {
            if (output.columns.Rows() > 0) output.columns.Export(batch);
            return;
        }
        *batch = output.waiting.front();
        output.waiting.pop_front();
    }

    // Nobody asks for the table any more.
    void Drop(size_t table) noexcept {
        const std::lock_guard lock(mutex);
        outputs[table].Drop();
        WantWhatIsAskedFor();
    }

  private:
    struct Output {
        Output(map::Table outputTable, const Options& options)
            : table(outputTable), columns(table, options.splitByCode, options.crs) {}
        Output(const Output&) = delete;
        Output& operator=(const Output&) = delete;
        ~Output() { Drop(); }

        void Drop() noexcept {
            wanted = false;
            for (ArrowArray& batch : waiting) batch.release(&batch);
            waiting.clear();
        }

        map::Table table;
        map::Columns columns;
        std::deque<ArrowArray> waiting;
        bool wanted = true;
        // Of parcels alone.
        map::ParcelBuilder builder;
        std::vector<map::Parcel> parcels;
        size_t nextParcel = 0;
        bool built = false;
    };

    void WantWhatIsAskedFor() {
        if (!file) return;
        const auto anyOf = [&](auto... tables) {
            return std::ranges::any_of(outputs, [&](const Output& output) {
                return output.wanted && ((output.table == tables) || ...);
            });
        };
        file->Want({anyOf(map::Table::lines, map::Table::parcels), anyOf(map::Table::points),
                    anyOf(map::Table::texts, map::Table::parcels)});
    }

    bool IsFull(const Output& output) const {
        return output.columns.Rows() >= int64_t{options.batchRows} ||
               output.columns.Weight() >= heaviestBatch;
    }

    // Goes on until a batch is full or the map ends.
    void Read() {
        try {
            for (bool full = false; !full;) {
                const map::ElementKind kind = file->Next();
                if (kind == map::ElementKind::none) break;
                for (Output& output : outputs) full |= output.wanted && Take(kind, output);
                if (full) return;
            }
        } catch (...) {
            failure = std::current_exception();
        }
        file.reset();
    }

    // True when that fills a batch, which waits from now on.
    bool Take(map::ElementKind kind, Output& output) {
        if (output.table == map::Table::parcels) {
            map::AddToParcels(output.builder, {options.parcelLayer, options.numberLayer}, kind, file->Line(),
                              file->Text());
            return false;
        }
        if (kind == map::ElementKind::line) {
            output.columns.Take(file->Line());
        } else {
            output.columns.Take(file->Text());
        }
        if (!IsFull(output)) return false;
        output.waiting.emplace_back();
        try {
            output.columns.Export(&output.waiting.back());
        } catch (...) {
            output.waiting.pop_back();
            throw;
        }
        return true;
    }

    // The next parcels of a map that has been read.
    void FinishParcels(Output& output) {
        if (output.table != map::Table::parcels || failure) return;
        if (!output.built) {
            map::Parcels made = output.builder.Build();
            output.built = true;
            if (made.tooManyCrossings)
                TellWarning(options, "no parcels, for the boundaries cross too often", source->Name());
            output.parcels = std::move(made.parcels);
        }
        while (output.nextParcel < output.parcels.size() && !IsFull(output))
            output.columns.Take(output.parcels[output.nextParcel++]);
    }

    std::shared_ptr<Source> source;
    Options options;
    std::mutex mutex;
    std::deque<Output> outputs;
    std::unique_ptr<MapFile> file;  // null at the end
    std::exception_ptr failure;
};

// One of the tables of a passage.
class ColumnStream : public BatchStream {
  public:
    ColumnStream(std::shared_ptr<Passage> streamPassage, size_t streamTable)
        : passage(std::move(streamPassage)), table(streamTable) {}
    ~ColumnStream() override { passage->Drop(table); }

    void Schema(ArrowSchema* schema) override { passage->Schema(table, schema); }
    void Batch(ArrowArray* batch) override { passage->Batch(table, batch); }

  private:
    std::shared_ptr<Passage> passage;
    size_t table;
};

}  // namespace
}  // namespace vemrado::capi

vkm_status vkm_stream(vkm_reader* reader, vkm_table table, ArrowArrayStream* stream, vkm_error** error) {
    return vkm_streams(reader, &table, 1, stream, error);
}

vkm_status vkm_streams(vkm_reader* reader, const vkm_table* tables, size_t count, ArrowArrayStream* streams,
                       vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && (count == 0 || (tables != nullptr && streams != nullptr)),
                "vkm_streams: null");
        std::fill_n(streams, count, ArrowArrayStream{});
        const std::span<const vkm_table> wanted(tables, count);
        Require(std::ranges::all_of(wanted, [](vkm_table t) { return t >= VKM_LINES && t <= VKM_PARCELS; }),
                "vkm_streams: there is no such table");
        if (count == 0) return VKM_OK;
        const auto passage = std::make_shared<Passage>(reader->source, reader->options, wanted);
        std::vector<std::unique_ptr<ColumnStream>> made;
        for (size_t i = 0; i < count; ++i) made.push_back(std::make_unique<ColumnStream>(passage, i));
        for (size_t i = 0; i < count; ++i) BatchStream::HandOut(std::move(made[i]), &streams[i]);
        return VKM_OK;
    });
}
