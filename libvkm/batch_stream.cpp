#include "batch_stream.h"

#include <cerrno>

#include "failure.h"

namespace vemrado::capi {
namespace {

int ErrorNumber(vkm_status status) {
    return status == VKM_OK              ? 0
           : status == VKM_ERROR_MEMORY  ? ENOMEM
           : status == VKM_ERROR_STOPPED ? ECANCELED
                                         : EIO;
}

BatchStream& BehindOf(ArrowArrayStream* stream) {
    return *static_cast<BatchStream*>(stream->private_data);
}

}  // namespace

template <typename Function>
int BatchStream::Answer(ArrowArrayStream* stream, Function function) noexcept {
    BatchStream& batches = BehindOf(stream);
    vkm_error* error = nullptr;
    batches.failed = Guarded(&error, [&] {
        batches.reason.clear();
        function(batches);
        return VKM_OK;
    });
    if (error != nullptr) batches.reason.swap(error->text);
    vkm_error_free(error);
    return ErrorNumber(batches.failed);
}

int BatchStream::GetSchema(ArrowArrayStream* stream, ArrowSchema* schema) {
    *schema = {};
    return Answer(stream, [&](BatchStream& batches) { batches.Schema(schema); });
}

int BatchStream::GetNext(ArrowArrayStream* stream, ArrowArray* batch) {
    *batch = {};
    return Answer(stream, [&](BatchStream& batches) { batches.Batch(batch); });
}

const char* BatchStream::GetLastError(ArrowArrayStream* stream) {
    const BatchStream& batches = BehindOf(stream);
    if (batches.failed == VKM_OK) return nullptr;
    return batches.reason.empty() ? vkm_status_text(batches.failed) : batches.reason.c_str();
}

void BatchStream::Release(ArrowArrayStream* stream) {
    delete &BehindOf(stream);
    stream->release = nullptr;
}

void BatchStream::HandOut(std::unique_ptr<BatchStream> batches, ArrowArrayStream* stream) noexcept {
    *stream = {GetSchema, GetNext, GetLastError, Release, batches.release()};
}

}  // namespace vemrado::capi
