#include "module_session.h"

#include <algorithm>
#include <utility>

#include "client/message_boxes.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

// A box stops nothing, so it must not fail a host that turns errors into exceptions.
constexpr CPLErr boxSeverity = CE_Warning;

}  // namespace

ModuleSession::ModuleSession()
    : services{OnBox, this, &virtualFiles, nullptr}, servicesBefore(FrameworkSetThreadServices(&services)) {
    CPLPushErrorHandlerEx(OnError, this);
}

ModuleSession::~ModuleSession() {
    CPLPopErrorHandler();
    FrameworkSetThreadServices(servicesBefore);
    for (const Message& message : messages)
        CPLError(message.severity, message.number, "%s", message.text.c_str());
}

int ModuleSession::OnBox(void* session, const char* text, unsigned int) {
    constexpr int okButton = 1;
    static_cast<ModuleSession*>(session)->Report(boxSeverity, CPLE_AppDefined, client::BoxText(text));
    return okButton;
}

void ModuleSession::Report(CPLErr severity, CPLErrorNum number, std::string text) {
    messages.push_back({severity, number, std::move(text)});
}

bool ModuleSession::RaiseLast(CPLErr severity) {
    if (messages.empty()) return false;
    messages.back().severity = severity;
    return true;
}

void CPL_STDCALL ModuleSession::OnError(CPLErr severity, CPLErrorNum number, const char* text) {
    if (severity == CE_Debug) return;
    // The reader says where a failure below it stops the reading; until then there are features to hand out.
    static_cast<ModuleSession*>(CPLGetErrorHandlerUserData())
        ->Report(std::min(severity, CE_Warning), number, text);
}

}  // namespace vemrado::gdal
