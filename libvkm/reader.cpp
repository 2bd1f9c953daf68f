#include "reader.h"

#include "client/text_encoding.h"

using namespace vemrado;
using namespace vemrado::capi;

vkm_reader::vkm_reader(std::shared_ptr<Source> readSource, Options readOptions)
    : source(std::move(readSource)),
      options(std::move(readOptions)),
      file(std::make_unique<MapFile>(source, options, false)),
      view(options.splitByCode) {}

namespace {

template <typename MakeSource>
vkm_reader* Open(const vkm_options* options, vkm_error** error, MakeSource makeSource) noexcept {
    vkm_reader* reader = nullptr;
    Guarded(error, [&] {
        std::shared_ptr<Source> source = makeSource();
        reader = new vkm_reader(std::move(source), CopyOptions(options));
        return VKM_OK;
    });
    return reader;
}

vkm_status FailAgain(vkm_reader& reader, vkm_error** error) noexcept {
    return Guarded(error, [&]() -> vkm_status {
        throw Failure::WithText(reader.failed->status, reader.failed->text, reader.failed->file,
                                reader.failed->line);
    });
}

vkm_status Next(vkm_reader& reader, const vkm_element** element) {
    if (reader.ended) return VKM_END;
    switch (reader.file->Next()) {
        case map::ElementKind::line:
            *element = reader.view.Line(reader.file->Line());
            return VKM_OK;
        case map::ElementKind::text:
            *element = reader.view.Text(reader.file->Text());
            return VKM_OK;
        case map::ElementKind::none:
            break;
    }
    reader.ended = true;
    return VKM_END;
}

map::Box ExtentOf(vkm_reader& reader) {
    Options quiet = reader.options;  // its warnings come with the elements
    quiet.onWarning = nullptr;
    MapFile file(reader.source, quiet, false);
    map::Box box;
    for (auto kind = file.Next(); kind != map::ElementKind::none; kind = file.Next()) {
        if (kind == map::ElementKind::text) {
            box.Add(file.Text().point);
        } else {
            for (const map::Point& point : file.Line().points) box.Add(point);
        }
    }
    return box;
}

}  // namespace

vkm_reader* vkm_open(const char* path, const vkm_options* options, vkm_error** error) {
    return Open(options, error, [&] {
        Require(path != nullptr && *path != '\0', "path: there is none");
        return DiskSource(path);
    });
}

vkm_reader* vkm_open_memory(const void* data, size_t length, const char* name, const vkm_options* options,
                            void (*release)(void*), void* context, vkm_error** error) {
    return Open(options, error, [&] { return MemorySource(data, length, name, release, context); });
}

vkm_reader* vkm_open_source(const vkm_source* source, const char* name, const vkm_options* options,
                            vkm_error** error) {
    return Open(options, error, [&] {
        Require(source != nullptr && SaysSize(source->size), "source: null, or it does not say its size");
        return CallersSource(KnownPart(*source, vkm_source{}), name);
    });
}

void vkm_close(vkm_reader* reader) {
    delete reader;
}

vkm_status vkm_get_header(vkm_reader* reader, vkm_header* header, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && header != nullptr && SaysSize(header->size),
                "vkm_get_header: null, or a header that does not say its size");
        map::Importer& importer = reader->file->Importer();
        client::TextDecoder decoder(reader->options.encoding);
        reader->headerName = decoder.Decode(importer.Details().GetHeaderName());
        reader->headerDate = decoder.Decode(importer.Details().GetHeaderDate());
        reader->headerComments = decoder.Decode(importer.Details().GetHeaderComments());
        vkm_header values = {};
        values.scale = importer.Scale();
        values.relative = importer.Relative() ? 1 : 0;
        importer.Details().GetOrigin(&values.origin[0], &values.origin[1]);
        values.name = reader->headerName.c_str();
        values.date = reader->headerDate.c_str();
        values.comments = reader->headerComments.c_str();
        values.crs = reader->options.crs.c_str();
        FillIn(header, values);
        return VKM_OK;
    });
}

vkm_status vkm_next(vkm_reader* reader, const vkm_element** element, vkm_error** error) {
    if (element != nullptr) *element = nullptr;
    if (reader != nullptr && reader->failed) return FailAgain(*reader, error);
    return Guarded(error, [&] {
        Require(reader != nullptr && element != nullptr, "vkm_next: null");
        try {
            return Next(*reader, element);
        } catch (const Failure& failure) {
            reader->failed = failure.Error();
            throw;
        } catch (const std::bad_alloc&) {
            reader->failed = vkm_error{VKM_ERROR_MEMORY, vkm_status_text(VKM_ERROR_MEMORY), {}, 0};
            throw;
        }
    });
}

vkm_status vkm_rewind(vkm_reader* reader, vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr, "vkm_rewind: null");
        auto again = std::make_unique<MapFile>(reader->source, reader->options, false);
        reader->file = std::move(again);
        reader->ended = false;
        reader->failed.reset();
        return VKM_OK;
    });
}

int32_t vkm_complete(const vkm_reader* reader) {
    return reader != nullptr && reader->file->Complete() ? 1 : 0;
}

uint64_t vkm_bad_bytes(const vkm_reader* reader) {
    return reader != nullptr ? reader->file->BadBytes() : 0;
}

uint64_t vkm_left_out(const vkm_reader* reader) {
    return reader != nullptr ? reader->file->LeftOut() : 0;
}

vkm_status vkm_extent(vkm_reader* reader, double box[4], vkm_error** error) {
    return Guarded(error, [&] {
        Require(reader != nullptr && box != nullptr, "vkm_extent: null");
        if (!reader->extent) reader->extent = ExtentOf(*reader);
        const map::Box& found = *reader->extent;
        if (found.IsEmpty()) return VKM_NOTHING;
        box[0] = found.minX;
        box[1] = found.minY;
        box[2] = found.maxX;
        box[3] = found.maxY;
        return VKM_OK;
    });
}
