#include "interface/vkm_input.h"

#include <cstdio>
#include <new>

#include "framework/framework.h"
#include "messages/message_table.h"
#include "platform/platform.h"
#include "support/host_calls.h"
#include "vkm/element_loop.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado {

namespace {

constexpr uint32_t longestFileWithoutProgress = 8192;  // bytes
constexpr uint32_t progressUnits = 100;
static_assert(longestFileWithoutProgress >= progressUnits, "a unit is at least a byte");
constexpr size_t failureTextCapacity = 1024;
// What the info-window library takes of the two texts, terminator included.
constexpr size_t progressTextCapacity = 80;
constexpr size_t endTextCapacity = 16;

}  // namespace

CVkmInput::CVkmInput()
    : reader([](void* importer) { return static_cast<CVkmInput*>(importer)->UpdateProgress(); }, this) {}

CVkmInput::~CVkmInput() {
    Close();
}

int CVkmInput::Open(const char* fileName, int loadSymbology, const char* newLayerName, int axisOrientation,
                    double /*gpScale*/, int flags) try {
    Close();
    if (!OpenFile(fileName)) return 0;
    reader.BeginFile();
    layerName = newLayerName == nullptr ? "" : newLayerName;
    SetAxisOrientation(axisOrientation);
    openFlags = static_cast<uint32_t>(flags);
    const int64_t length = reader.inputFile.Length();
    fileLength = static_cast<uint32_t>(length < 0 ? 0 : length);
    if (fileLength > longestFileWithoutProgress) OpenProgressWindow();
    if (!ReadHeader(state, reader)) ThrowReadError();
    if (loadSymbology != 0) tables.Load(static_cast<int>(openFlags & 1u));
    return 1;
} catch (const std::bad_alloc&) {
    Close();
    return 0;
}

bool CVkmInput::OpenFile(const char* fileName) {
    inputFileName = fileName == nullptr ? "" : fileName;
    fileOpen = reader.inputFile.Open(inputFileName.c_str());
    if (fileOpen != 0) return true;
    char text[failureTextCapacity];
    reader.inputFile.FailureText(inputFileName.c_str(), text, sizeof text);
    AfxMessageBox(text, frameworkExclamationOk, 0);
    return false;
}

void CVkmInput::OpenProgressWindow() {
    progressStep = fileLength / progressUnits;
    char text[progressTextCapacity];
    char end[endTextCapacity];
    std::snprintf(text, sizeof text, "%s", msgReadingInputFile);
    std::snprintf(end, sizeof end, "%s", msgEnd);
    const char* lines[] = {text};
    progressWindow = CallHost(create_info_ext, lines, 1, text, end);
}

void CVkmInput::Close() {
    if (fileOpen != 0) {
        reader.inputFile.Close();
        if (progressWindow != nullptr) CallHost(close_info, progressWindow);
        progressWindow = nullptr;
        ++filesClosed;
    }
    fileOpen = 0;
}

bool CVkmInput::UpdateProgress() {
    const uint32_t closedBefore = filesClosed;
    if (progressWindow != nullptr) {
        const uint32_t position = reader.bytesRead / progressStep;
        if (position > progressPosition) {
            if (CallHost(draw_info, progressWindow, static_cast<int>(progressUnits),
                         static_cast<int>(position), 0) != 0)
                return false;
            progressPosition = position;
        }
    }
    platform::PumpMessages();
    // A window procedure of the host's may have closed the file, and with it the line just read.
    return filesClosed == closedBefore;
}

void CVkmInput::ThrowReadError() const {
    char reason[failureTextCapacity];
    reader.inputFile.FailureReason(reason, sizeof reason);
    AfxThrowFileException(inputFileName.c_str(), reason);
}

int CVkmInput::ReadNext() {
    ElementKind element = ElementKind::none;
    try {
        element = ReadNextElement(state, reader);
    } catch (const std::bad_alloc&) {
        outOfMemory = true;
    }
    if (element == ElementKind::error) ThrowReadError();
    return static_cast<int>(element);
}

void CVkmInput::SetAxisOrientation(int axisOrientation) {
    state.axisOrientation = static_cast<uint32_t>(axisOrientation);
}

void CVkmInput::SetLayerName(const char* newLayerName) {
    try {
        layerName = newLayerName == nullptr ? "" : newLayerName;
    } catch (const std::bad_alloc&) {
        outOfMemory = true;  // the old name stays
    }
}

}  // namespace vemrado
