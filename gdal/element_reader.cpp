#include "element_reader.h"

#include <exception>
#include <new>
#include <utility>

#include "module_session.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

// How much is copied at a time: little enough to stay in the processor's cache.
constexpr size_t batchVertices = 4096;
constexpr size_t batchElements = 1024;

std::string Where(const std::string& name, const map::Importer& importer, const std::exception& error) {
    return name + ", line " + std::to_string(importer.LineCount() + 1) + ": " + error.what();
}

}  // namespace

std::unique_ptr<ElementReader::OpenedFile> ElementReader::Open(ModuleSession& session, const Source& source,
                                                               size_t file) {
    const std::string& name = source.names[file];
    std::unique_ptr<OpenedFile> made;
    try {
        made = std::make_unique<OpenedFile>(source);
    } catch (const std::bad_alloc&) {
        session.Report(source.Severity(), CPLE_OutOfMemory, name + ": out of memory");
        return nullptr;
    }
    map::OpenOptions options;
    options.fileName = source.files[file];
    options.axisOrientation = source.axisOrientation;
    options.symbols = false;
    options.lookAtFile = false;
    std::string failure;
    try {
        if (made->importer.Open(options)) return made;
        // The module's box has said why.
        if (!session.RaiseLast(source.Severity())) failure = name + ": cannot be opened";
    } catch (const std::exception& error) {
        failure = Where(name, made->importer, error);
    }
    if (!failure.empty()) session.Report(source.Severity(), CPLE_OpenFailed, failure);
    return nullptr;
}

std::optional<Header> ReadHeader(const Source& source, size_t file) {
    ModuleSession session;
    const auto opened = ElementReader::Open(session, source, file);
    if (opened == nullptr) return std::nullopt;
    return opened->Header(source.encoding);
}

Header ElementReader::OpenedFile::Header(client::Encoding encoding) const {
    client::TextDecoder decoder(encoding);
    const std::string date = decoder.Decode(importer.Details().GetHeaderDate());
    return {importer.Scale(), importer.Relative(), date.substr(0, date.find_first_of(" \t")),
            decoder.Decode(importer.Details().GetHeaderComments())};
}

ElementReader::ElementReader(Source& readSource, Content wanted, Skips skipsFiles)
    : source(readSource),
      writer(wanted, readSource.splitByCode, readSource.angleUnit),
      skips(std::move(skipsFiles)) {}

ElementReader::~ElementReader() {
    if (opened == nullptr) return;
    ModuleSession session;
    opened.reset();
}

void ElementReader::Fill(Batch& batch) {
    do {
        batch.Clear();
        if (state == ReadState::reading && source.stopRequested && source.stopRequested())
            state = ReadState::failed;
        if (state != ReadState::reading) return;
        ModuleSession session;
        if (opened == nullptr && !OpenNext(session)) continue;
        batch.source = nextFile - 1;
        try {
            ReadElements(session, batch);
        } catch (const std::exception& error) {
            // What was copied before stays; the next call ends, or goes on with the next file.
            if (!std::exchange(source.states[batch.source].damageTold, source.keepGoing))
                session.Report(source.Severity(), CPLE_FileIO,
                               Where(source.names[batch.source], opened->importer, error));
            opened.reset();
            if (!source.keepGoing) state = ReadState::failed;
        }
    } while (batch.lines.empty() && batch.points.empty() && batch.texts.empty());
}

bool ElementReader::OpenNext(ModuleSession& session) {
    const auto isPassedOver = [&](size_t file) {
        return source.states[file].unusable || (skips && skips(file));
    };
    while (nextFile < source.files.size() && isPassedOver(nextFile)) ++nextFile;
    if (nextFile == source.files.size()) {
        state = ReadState::complete;
        return false;
    }
    FileState& file = source.states[nextFile];
    client::EncodingEvidence unused;
    const bool isMap = std::exchange(file.checked, true) ||
                       CheckMapFile(source.files[nextFile], source.names[nextFile], unused);
    if (isMap) opened = Open(session, source, nextFile);
    ++nextFile;
    if (opened != nullptr) {
        header = opened->Header(source.encoding);
    } else if (source.keepGoing) {
        file.unusable = true;
    } else {
        state = ReadState::failed;
    }
    return opened != nullptr;
}

void ElementReader::EndFile(ModuleSession& session) {
    FileState& file = source.states[nextFile - 1];
    const std::string& name = source.names[nextFile - 1];
    if (!opened->importer.Complete() && !std::exchange(file.truncated, true)) {
        session.Report(CE_Warning, CPLE_AppDefined,
                       name + ", line " + std::to_string(opened->importer.LineCount()) +
                           ": the file ends without its closing record; its last element is lost");
    }
    const client::TextDecoder& decoder = opened->reading.Decoder();
    const std::string advice =
        client::EncodingAdvice(decoder.ReplacedBytes(), decoder.Evidence(), source.encoding, "ENCODING=");
    if (!advice.empty() && !std::exchange(file.encodingTold, true))
        session.Report(CE_Warning, CPLE_AppDefined, name + ": " + advice);
    opened.reset();
}

void ElementReader::ReadElements(ModuleSession& session, Batch& batch) {
    const map::Reading& reading = opened->reading;
    for (size_t elements = 0; elements < batchElements && batch.vertices.size() < batchVertices; ++elements) {
        switch (opened->reading.Next()) {
            case map::ElementKind::none:
                return EndFile(session);
            case map::ElementKind::line:
                if (reading.Line().pointsLeftOut > 0) LeaveOut(session);
                if (writer.Wants(Content::lines) || writer.Wants(Content::points))
                    writer.Add(reading.Line(), batch);
                break;
            case map::ElementKind::text:
                if (reading.Text().fault == map::TextFault::place) {
                    LeaveOut(session);
                } else if (writer.Wants(Content::texts)) {
                    writer.Add(reading.Text(), batch);
                }
                break;
        }
    }
}

void ElementReader::LeaveOut(ModuleSession& session) {
    if (std::exchange(source.states[nextFile - 1].leftOut, true)) return;
    session.Report(CE_Warning, CPLE_AppDefined,
                   source.names[nextFile - 1] + ", before line " +
                       std::to_string(opened->importer.LineCount()) +
                       ": a coordinate is no place on earth; such points are left out");
}

}  // namespace vemrado::gdal
