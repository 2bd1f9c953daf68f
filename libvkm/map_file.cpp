#include "map_file.h"

#include "client/stop_request.h"
#include "failure.h"

namespace vemrado::capi {
namespace {

constexpr uint32_t elementsBetweenProgress = 4096;

}  // namespace

MapFile::MapFile(std::shared_ptr<Source> readSource, const Options& readOptions, bool withSymbology)
    : source(std::move(readSource)),
      options(readOptions),
      reading(importer, readOptions.encoding, readOptions.angleUnit, map::Symbols::leftAlone) {
    Open(withSymbology && options.withSymbology);
}

MapFile::~MapFile() {
    const ModuleCalls calls(*source, state);  // the importer's end closes the file
    importer.Close();
}

void MapFile::Open(bool withSymbology) {
    map::OpenOptions open;
    open.fileName = source->Name();
    open.axisOrientation = options.axisOrientation;
    open.symbology = withSymbology;
    open.symbols = withSymbology;
    open.dataDirectory = options.dataDirectory;
    open.lookAtFile = false;
    bool opened = false;
    try {
        const ModuleCalls calls(*source, state);
        opened = importer.Open(open);
    } catch (const CFileException& error) {
        throw Failure(VKM_ERROR_READ, error.Reason(), source->Name(),
                      static_cast<uint64_t>(importer.LineCount()) + 1);
    }
    if (state.failure) std::rethrow_exception(state.failure);
    if (opened) return WarnOfBoxes();
    if (state.boxes.empty()) throw std::bad_alloc();
    throw Failure::WithText(VKM_ERROR_OPEN, state.boxes.back(), source->Name());
}

// While elements are read the module opens nothing and shows nothing, so it needs no services of this
// reader's.
map::ElementKind MapFile::ReadNext() {
    try {
        return importer.Next();
    } catch (const CFileException& error) {
        throw Failure(VKM_ERROR_READ, error.Reason(), source->Name(),
                      static_cast<uint64_t>(importer.LineCount()) + 1);
    }
}

bool MapFile::Wants(map::ElementKind kind) const {
    const bool wants = kind == map::ElementKind::text
                           ? wanted.texts
                           : wanted.points || (wanted.strokes && importer.Details().GetElementCount() > 1);
    if (!wants) return false;
    return options.layers.empty() || options.Wants(importer.Layer());
}

map::ElementKind MapFile::Next() {
    while (true) {
        if (++sinceProgress == elementsBetweenProgress) CheckStop();
        const map::ElementKind kind = ReadNext();
        if (kind == map::ElementKind::none) {
            if (client::StopRequested()) throw Failure(VKM_ERROR_STOPPED, "stopped", source->Name());
            TellEnd();
            return kind;
        }
        if (!Wants(kind)) continue;
        reading.Take(kind);
        if (kind == map::ElementKind::line) {
            leftOut += Line().pointsLeftOut;
            return kind;
        }
        if (Text().fault != map::TextFault::place) return kind;
        ++leftOut;
    }
}

draw::Scene MapFile::MakeScene(draw::SceneOptions sceneOptions) {
    draw::SceneBuilder builder(importer, std::move(sceneOptions));
    try {
        const ModuleCalls calls(*source, state);
        while (true) {
            if (++sinceProgress == elementsBetweenProgress) CheckStop();
            const map::ElementKind kind = importer.Next();
            if (kind == map::ElementKind::none) break;
            builder.Take(kind);
        }
        if (client::StopRequested()) throw Failure(VKM_ERROR_STOPPED, "stopped", source->Name());
        TellEnd();
        return builder.Finish();
    } catch (const CFileException& error) {
        throw Failure(VKM_ERROR_READ, error.Reason(), source->Name(),
                      static_cast<uint64_t>(importer.LineCount()) + 1);
    }
}

void MapFile::CheckStop() {
    sinceProgress = 0;
    TellProgress(options, state.progress.Part(), source->Name());
}

void MapFile::TellEnd() {
    WarnOfBoxes();
    if (!Complete())
        TellWarning(options, "the file ends without its closing record; its last element is lost",
                    source->Name(), static_cast<uint64_t>(importer.LineCount()), VKM_INCOMPLETE);
    if (BadBytes() > 0) Warn(std::to_string(BadBytes()) + " bytes make no character of the encoding");
    if (leftOut > 0) Warn(std::to_string(leftOut) + " points whose coordinates are no place were left out");
}

void MapFile::Warn(const std::string& reason) {
    TellWarning(options, reason, source->Name());
}

void MapFile::WarnOfBoxes() {
    for (const std::string& text : state.boxes) TellWarning(options, text, {});
    state.boxes.clear();
}

}  // namespace vemrado::capi
