#include "failure.h"

#include "client/foreign_file.h"
#include "client/input_file.h"
#include "framework/framework.h"

namespace vemrado::capi {
namespace {

std::string SentenceOf(const std::string& reason, const std::string& file, uint64_t line) {
    if (file.empty()) return reason;
    return file + (line != 0 ? ", line " + std::to_string(line) : std::string()) + ": " + reason;
}

vkm_error CurrentError() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure.Error();
    } catch (const client::ForeignFile& foreign) {
        return {VKM_ERROR_OPEN, foreign.what(), {}, 0};
    } catch (const std::bad_alloc&) {
        return {VKM_ERROR_MEMORY, vkm_status_text(VKM_ERROR_MEMORY), {}, 0};
    } catch (const std::exception& exception) {
        return {VKM_ERROR_INTERNAL, std::string("internal error: ") + exception.what(), {}, 0};
    } catch (...) {
        return {VKM_ERROR_INTERNAL, vkm_status_text(VKM_ERROR_INTERNAL), {}, 0};
    }
}

}  // namespace

Failure::Failure(vkm_status status, const std::string& reason, std::string fileName, uint64_t line)
    : Failure(vkm_error{status, SentenceOf(reason, fileName, line), fileName, line}) {}

Failure Failure::WithText(vkm_status status, std::string text, std::string fileName, uint64_t line) {
    return Failure(vkm_error{status, std::move(text), std::move(fileName), line});
}

vkm_status ReportCurrent(vkm_error** error) noexcept {
    try {
        vkm_error current = CurrentError();
        const vkm_status status = current.status;
        if (error != nullptr && *error == nullptr) *error = new vkm_error(std::move(current));
        return status;
    } catch (...) {
        return VKM_ERROR_MEMORY;  // too little of it to say what happened
    }
}

}  // namespace vemrado::capi

const char* vkm_version(void) {
    return VEMRADO_VERSION;
}

const char* vkm_status_text(vkm_status status) {
    switch (status) {
        case VKM_OK:
            return "done";
        case VKM_END:
            return "no element is left";
        case VKM_NOTHING:
            return "there is no such thing";
        case VKM_INCOMPLETE:
            return "the closing record is missing";
        case VKM_ERROR_ARGUMENT:
            return "bad argument or order of calls";
        case VKM_ERROR_MEMORY:
            return "out of memory";
        case VKM_ERROR_OPEN:
            return "the source cannot be opened";
        case VKM_ERROR_READ:
            return "reading failed";
        case VKM_ERROR_WRITE:
            return "the output cannot be written";
        case VKM_ERROR_STOPPED:
            return "stopped by the caller";
        case VKM_ERROR_UNSUPPORTED:
            return "this build of the library cannot do that";
        case VKM_ERROR_INTERNAL:
            return "internal error";
        default:
            return "unknown status";
    }
}

vkm_status vkm_error_status(const vkm_error* error) {
    return error != nullptr ? error->status : VKM_OK;
}

const char* vkm_error_text(const vkm_error* error) {
    return error != nullptr ? error->text.c_str() : "";
}

const char* vkm_error_file(const vkm_error* error) {
    return error != nullptr ? error->file.c_str() : "";
}

uint64_t vkm_error_line(const vkm_error* error) {
    return error != nullptr ? error->line : 0;
}

void vkm_error_free(vkm_error* error) {
    delete error;
}
