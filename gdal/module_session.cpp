#include "module_session.h"

#include <algorithm>
#include <utility>

#include "client/data_directory.h"
#include "framework/framework.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

std::mutex moduleLock;

// A box stops nothing, so it must not fail a host that turns errors into exceptions.
constexpr CPLErr boxSeverity = CE_Warning;

}  // namespace

ModuleSession::ModuleSession(const std::string& dataDirectory) : lock(moduleLock) {
    CPLPushErrorHandlerEx(OnError, this);
    boxes.emplace([this](const std::string& text) { Report(boxSeverity, CPLE_AppDefined, text); });
    FrameworkSetFileProvider(&virtualFiles);
    FrameworkSetDataDirectory(dataDirectory.empty() ? nullptr : dataDirectory.c_str());
}

ModuleSession::~ModuleSession() {
    FrameworkSetDataDirectory(nullptr);
    FrameworkSetFileProvider(nullptr);
    boxes.reset();
    CPLPopErrorHandler();
    lock.unlock();
    for (const Message& message : messages)
        CPLError(message.severity, message.number, "%s", message.text.c_str());
}

void ModuleSession::Report(CPLErr severity, CPLErrorNum number, std::string text) {
    messages.push_back({severity, number, std::move(text)});
}

bool ModuleSession::FailByLast() {
    if (messages.empty()) return false;
    messages.back().severity = CE_Failure;
    return true;
}

void CPL_STDCALL ModuleSession::OnError(CPLErr severity, CPLErrorNum number, const char* text) {
    if (severity == CE_Debug) return;
    // The reader says where a failure below it stops the reading; until then there are features to hand out.
    static_cast<ModuleSession*>(CPLGetErrorHandlerUserData())
        ->Report(std::min(severity, CE_Warning), number, text);
}

}  // namespace vemrado::gdal
