#include "columns.h"

#include <emscripten.h>

#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>

#include "client/text_encoding.h"
#include "said.h"
#include "source.h"

namespace vemrado::web {
namespace {

struct OpenedFile {
    int file;
    double length;
    double offset;
};

template <typename Structure>
void Release(Structure& structure) {
    if (structure.release != nullptr) structure.release(&structure);
}

}  // namespace

ColumnReader::ColumnReader(const char* name, int pageFile, double fileLength, const vkm_options& options,
                           vkm_table table)
    : file(pageFile), length(fileLength) {
    vkm_source source = {};
    source.size = sizeof source;
    source.context = this;
    source.open = OpenFile;
    source.read = ReadFile;
    source.length = LengthOfFile;
    source.close = CloseFile;
    vkm_error* error = nullptr;
    vkm_reader* reader = vkm_open_source(&source, name, &options, &error);
    if (reader != nullptr) vkm_stream(reader, table, &stream, &error);
    vkm_close(reader);
    const std::string reason = vkm_error_text(error);
    vkm_error_free(error);
    if (stream.release == nullptr) throw std::runtime_error(reason);
    Check(stream.get_schema(&stream, &schema));
}

ColumnReader::~ColumnReader() {
    Release(batch);
    Release(schema);
    Release(stream);
}

const ArrowArray* ColumnReader::Next() {
    Release(batch);
    Check(stream.get_next(&stream, &batch));
    return batch.release == nullptr ? nullptr : &batch;
}

void ColumnReader::Check(int errorNumber) {
    if (errorNumber == 0) return;
    const char* reason = stream.get_last_error(&stream);
    throw std::runtime_error(reason != nullptr ? reason : std::strerror(errorNumber));
}

void* ColumnReader::OpenFile(void* self) {
    const auto& reader = *static_cast<ColumnReader*>(self);
    return new (std::nothrow) OpenedFile{reader.file, reader.length, 0};
}

int64_t ColumnReader::ReadFile(void* opened, void* destination, size_t count) {
    auto& from = *static_cast<OpenedFile*>(opened);
    try {
        const size_t got = ReadPageFile(from.file, from.offset, destination, count);
        from.offset += static_cast<double>(got);
        return static_cast<int64_t>(got);
    } catch (const std::exception&) {
        return -1;
    }
}

int64_t ColumnReader::LengthOfFile(void* opened) {
    return static_cast<int64_t>(static_cast<OpenedFile*>(opened)->length);
}

void ColumnReader::CloseFile(void* opened) {
    delete static_cast<OpenedFile*>(opened);
}

}  // namespace vemrado::web

namespace {

using namespace vemrado;
using web::ColumnReader;

struct Passage {
    std::unique_ptr<ColumnReader> reader;
    const ArrowArray* batch = nullptr;
};

std::map<int, Passage> passages;  // by the number of the page's file
std::string failure;

// Empty, or why it failed.
template <typename Function>
const char* Attempt(Function function) {
    failure.clear();
    try {
        function();
    } catch (const std::bad_alloc&) {
        failure = "out of memory";
    } catch (const std::exception& error) {
        failure = web::Said(std::string(error.what()));
    }
    return failure.c_str();
}

}  // namespace

extern "C" {

// Begins to give a table of a file. layers: null for all. Empty, or why it cannot.
EMSCRIPTEN_KEEPALIVE const char* web_columns_open(const char* name, int file, double length, int table,
                                                  int encoding, const int32_t* layers, int layerCount,
                                                  int splitByCode, int batchRows, int parcelLayer,
                                                  int numberLayer) {
    return Attempt([&] {
        vkm_options options = {};
        options.size = sizeof options;
        vkm_options_init(&options);
        options.encoding = client::encodingNames.at(static_cast<size_t>(encoding)).data();
        options.symbology = "";
        options.layers = layers;
        options.layer_count = static_cast<size_t>(layerCount);
        options.split_by_code = splitByCode;
        options.batch_rows = static_cast<uint32_t>(batchRows);
        options.parcel_layer = parcelLayer;
        options.number_layer = numberLayer;
        auto reader = std::make_unique<ColumnReader>(name, file, length, options, table);
        passages[file].reader = std::move(reader);
    });
}

// Goes to the next batch. Empty, or why it cannot.
EMSCRIPTEN_KEEPALIVE const char* web_columns_next(int file) {
    return Attempt([&] {
        Passage& passage = passages.at(file);
        passage.batch = nullptr;
        passage.batch = passage.reader->Next();
    });
}

// Null at the end.
EMSCRIPTEN_KEEPALIVE const ArrowArray* web_columns_batch(int file) {
    return passages.at(file).batch;
}

EMSCRIPTEN_KEEPALIVE const ArrowSchema* web_columns_schema(int file) {
    return passages.at(file).reader->Schema();
}

EMSCRIPTEN_KEEPALIVE void web_columns_close(int file) {
    passages.erase(file);
}

}  // extern "C"
