#include <cerrno>
#include <stdexcept>

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

// What an Arrow stream holds: a passage of its own over the map.
class ColumnStream {
  public:
    ColumnStream(std::shared_ptr<Source> streamSource, Options streamOptions, map::Table streamTable)
        : source(std::move(streamSource)),
          options(std::move(streamOptions)),
          table(streamTable),
          columns(table, options.splitByCode, options.crs) {
        file = std::make_unique<MapFile>(source, options, false);
    }

    void Schema(ArrowSchema* schema) const { map::ExportSchema(columns.Type(), schema); }

    // Released at the end.
    void Batch(ArrowArray* batch) {
        *batch = {};
        if (table == map::Table::parcels) {
            FillParcels();
        } else {
            Fill();
        }
        if (columns.Rows() > 0) columns.Export(batch);
    }

    std::string lastError;

  private:
    bool Full() const {
        return columns.Rows() >= int64_t{options.batchRows} || columns.Weight() >= heaviestBatch;
    }

    void Fill() {
        while (file && !Full()) {
            const map::ElementKind kind = file->Next();
            if (kind == map::ElementKind::line) columns.Take(file->Line());
            if (kind == map::ElementKind::text) columns.Take(file->Text());
            if (kind == map::ElementKind::none) file.reset();
        }
    }

    void FillParcels() {
        if (file) {
            BuildParcels();
            file.reset();
        }
        for (; nextParcel < parcels.size() && !Full(); ++nextParcel) columns.Take(parcels[nextParcel]);
    }

    void BuildParcels() {
        map::ParcelBuilder builder;
        const map::ParcelLayers layers = {options.parcelLayer, options.numberLayer};
        for (auto kind = file->Next(); kind != map::ElementKind::none; kind = file->Next())
            map::AddToParcels(builder, layers, kind, file->Line(), file->Text());
        map::Parcels made = builder.Build();
        if (made.tooManyCrossings)
            TellWarning(options, "no parcels, for the boundaries cross too often", source->Name());
        parcels = std::move(made.parcels);
    }

    std::shared_ptr<Source> source;
    Options options;
    map::Table table;
    map::Columns columns;
    std::unique_ptr<MapFile> file;  // null at the end
    std::vector<map::Parcel> parcels;
    size_t nextParcel = 0;
};

int ErrorNumber(vkm_status status) {
    return status == VKM_ERROR_MEMORY ? ENOMEM : status == VKM_ERROR_STOPPED ? ECANCELED : EIO;
}

// Runs a function of the stream: 0, or an error number after the reason has been kept.
template <typename Function>
int Answer(ArrowArrayStream* arrow, Function function) noexcept {
    auto& stream = *static_cast<ColumnStream*>(arrow->private_data);
    vkm_error* error = nullptr;
    const vkm_status status = Guarded(&error, [&] {
        stream.lastError.clear();
        function(stream);
        return VKM_OK;
    });
    if (status == VKM_OK) return 0;
    if (error != nullptr) stream.lastError.swap(error->text);
    vkm_error_free(error);
    return ErrorNumber(status);
}

int GetSchema(ArrowArrayStream* arrow, ArrowSchema* schema) {
    return Answer(arrow, [&](ColumnStream& stream) { stream.Schema(schema); });
}

int GetNext(ArrowArrayStream* arrow, ArrowArray* batch) {
    return Answer(arrow, [&](ColumnStream& stream) { stream.Batch(batch); });
}

const char* GetLastError(ArrowArrayStream* arrow) {
    const auto& stream = *static_cast<ColumnStream*>(arrow->private_data);
    return stream.lastError.empty() ? nullptr : stream.lastError.c_str();
}

void ReleaseStream(ArrowArrayStream* arrow) {
    delete static_cast<ColumnStream*>(arrow->private_data);
    arrow->release = nullptr;
}

}  // namespace
}  // namespace vemrado::capi

vkm_status vkm_stream(vkm_reader* reader, vkm_table table, ArrowArrayStream* stream, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && stream != nullptr, "vkm_stream: null");
        *stream = {};
        Require(table >= VKM_LINES && table <= VKM_PARCELS, "vkm_stream: there is no such table");
        auto made =
            std::make_unique<ColumnStream>(reader->source, reader->options, static_cast<map::Table>(table));
        *stream = {GetSchema, GetNext, GetLastError, ReleaseStream, made.release()};
        return VKM_OK;
    });
}
