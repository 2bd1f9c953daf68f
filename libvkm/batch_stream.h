// Streams of the Arrow C interface: what a consumer calls, and what answers it.

#pragma once

#include <memory>
#include <string>

#include "vemrado/vkm.h"
#include "vemrado/vkm_arrow.h"

namespace vemrado::capi {

// What stands behind a stream. What it throws the consumer gets as an error number and a reason.
class BatchStream {
  public:
    BatchStream() = default;
    BatchStream(const BatchStream&) = delete;
    BatchStream& operator=(const BatchStream&) = delete;
    virtual ~BatchStream() = default;

    virtual void Schema(ArrowSchema* schema) = 0;
    // Left released at the end.
    virtual void Batch(ArrowArray* batch) = 0;

    // Fills in a stream of the consumer's, which is the consumer's to release.
    static void HandOut(std::unique_ptr<BatchStream> batches, ArrowArrayStream* stream) noexcept;

  private:
    template <typename Function>
    static int Answer(ArrowArrayStream* stream, Function function) noexcept;
    static int GetSchema(ArrowArrayStream* stream, ArrowSchema* schema);
    static int GetNext(ArrowArrayStream* stream, ArrowArray* batch);
    static const char* GetLastError(ArrowArrayStream* stream);
    static void Release(ArrowArrayStream* stream);

    vkm_status failed = VKM_OK;  // the last call, with that reason
    std::string reason;
};

}  // namespace vemrado::capi
