#include "module_calls.h"

#include "client/text_encoding.h"

namespace vemrado::capi {
namespace {

int64_t ReadFile(void* file, void* destination, size_t length) {
    return static_cast<SourceFile*>(file)->Read(destination, length);
}

int64_t LengthOfFile(void* file) {
    return static_cast<SourceFile*>(file)->Length();
}

void CloseFile(void* file) {
    delete static_cast<SourceFile*>(file);
}

}  // namespace

ModuleCalls::ModuleCalls(Source& readSource, CallState& callState)
    : source(readSource),
      state(callState),
      provider{this, OpenFile, ReadFile, LengthOfFile, CloseFile},
      services{OnBox, this, &provider, nullptr},
      progress{this, OnProgress},
      servicesBefore(FrameworkSetThreadServices(&services)),
      progressBefore(InfoSetThreadProgress(&progress)) {}

ModuleCalls::~ModuleCalls() {
    InfoSetThreadProgress(progressBefore);
    FrameworkSetThreadServices(servicesBefore);
}

int ModuleCalls::OnBox(void* self, const char* text, unsigned int) {
    constexpr int buttonOk = 1;
    CallState& state = static_cast<ModuleCalls*>(self)->state;
    try {
        std::string message = client::MessageToUtf8(text);
        while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) message.pop_back();
        state.boxes.push_back(std::move(message));
    } catch (...) {
        state.failure = std::current_exception();
    }
    return buttonOk;
}

void* ModuleCalls::OpenFile(void* self, const char* path) {
    auto& calls = *static_cast<ModuleCalls*>(self);
    try {
        if (calls.source.Name() == path)
            return OpenAsMap(calls.source, nullptr, &calls.state.progress).release();
        return OpenTable(path).release();
    } catch (...) {
        calls.state.failure = std::current_exception();
        return nullptr;
    }
}

// The caller's function is asked between elements.
int ModuleCalls::OnProgress(void*, int, int) {
    return 0;
}

}  // namespace vemrado::capi
