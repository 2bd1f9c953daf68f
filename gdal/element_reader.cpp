#include "element_reader.h"

#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "module_session.h"

namespace vemrado::gdal {

namespace {

// One stay in the module takes about this much: some hundred microseconds, for the other threads' sake.
constexpr size_t batchVertices = 4096;
constexpr size_t batchElements = 1024;

CVKMDetails* OpenImporter(ModuleSession& session, const Source& source, size_t file) {
    CVKMDetails* importer = VkmDetails(CVKMInterface::CreateVKMInterface());
    if (importer == nullptr) {
        session.Report(CE_Failure, CPLE_OutOfMemory, source.names[file] + ": out of memory");
        return nullptr;
    }
    std::string failure;
    try {
        if (importer->Open(source.files[file].c_str(), 0, "", source.axisOrientation, 0.0,
                           CVKMInterface::flgSymbolsNone) != 0)
            return importer;
        // The module's box has said why.
        if (!session.FailByLast()) failure = source.names[file] + ": cannot be opened";
    } catch (const std::exception& error) {
        failure = source.names[file] + ", line " + std::to_string(importer->GetLineCount() + 1) + ": " +
                  error.what();
    }
    if (!failure.empty()) session.Report(CE_Failure, CPLE_OpenFailed, failure);
    CVKMInterface::DestroyVKMInterface(importer);
    return nullptr;
}

bool IsPlace(const double* point) {
    return std::isfinite(point[0]) && std::isfinite(point[1]);
}

uint32_t AddString(Batch& batch, const char* text, size_t length) {
    if (length == 0) return 0;
    const size_t place = batch.strings.size();
    batch.strings.insert(batch.strings.end(), text, text + length);
    batch.strings.push_back('\0');
    return static_cast<uint32_t>(place);
}

// An element without a type letter has no point of its own in the file: it holds the key fields of a line
// that goes on with the element before it.
void AddValues(VertexValues& values, const VertexValues& more) {
    const VertexValues none;
    if (more.code != 0) values.code = more.code;
    if (more.symbol != 0) values.symbol = more.symbol;
    if (Differs(more.valueM, none.valueM)) values.valueM = more.valueM;
    if (Differs(more.valueR, none.valueR)) values.valueR = more.valueR;
    if (Differs(more.valueU, none.valueU)) values.valueU = more.valueU;
}

// Counts the strokes of a line and marks the vertices that lie on none.
void FindStrokes(Batch& batch, LineRecord& line) {
    ForEachStroke(batch, line, [&](size_t first, size_t count) {
        ++line.strokes;
        for (size_t i = first; i < first + count; ++i) batch.values[i].stroked = true;
    });
}

}  // namespace

std::optional<Header> ReadHeader(const Source& source, size_t file) {
    ModuleSession session;
    CVKMDetails* importer = OpenImporter(session, source, file);
    if (importer == nullptr) return std::nullopt;
    const Header header = {importer->GetScale(), importer->GetRelativeCoordinates() != 0};
    CVKMInterface::DestroyVKMInterface(importer);
    return header;
}

ElementReader::ElementReader(Source& readSource, Content wanted)
    : source(readSource), content(wanted), decoder(readSource.encoding) {}

ElementReader::~ElementReader() {
    if (importer == nullptr) return;
    ModuleSession session;
    importer.reset();
}

void ElementReader::Fill(Batch& batch) {
    do {
        batch.Clear();
        if (state == ReadState::reading && source.stopRequested && source.stopRequested())
            state = ReadState::failed;
        if (state != ReadState::reading) return;
        ModuleSession session;  // one for each turn: other threads come in between
        if (importer == nullptr && !OpenFile(session)) return;
        batch.source = nextFile - 1;
        try {
            ReadElements(session, batch);
        } catch (const std::exception& error) {
            // What was copied before stays; the next call ends.
            session.Report(CE_Failure, CPLE_FileIO,
                           source.names[batch.source] + ", line " +
                               std::to_string(importer->GetLineCount() + 1) + ": " + error.what());
            importer.reset();
            Fail();
        }
    } while (batch.lines.empty() && batch.points.empty() && batch.texts.empty());
}

bool ElementReader::OpenFile(ModuleSession& session) {
    if (nextFile == source.files.size()) {
        state = ReadState::complete;
        return false;
    }
    importer.reset(OpenImporter(session, source, nextFile));
    ++nextFile;
    if (importer == nullptr) {
        Fail();
    } else {
        mapScale = importer->GetScale();
    }
    return importer != nullptr;
}

void ElementReader::Fail() {
    source.states[nextFile - 1].failed = true;
    state = ReadState::failed;
}

void ElementReader::EndFile(ModuleSession& session) {
    if (importer->IsComplete() == 0 && !std::exchange(source.states[nextFile - 1].truncated, true)) {
        session.Report(CE_Warning, CPLE_AppDefined,
                       source.names[nextFile - 1] + ", line " + std::to_string(importer->GetLineCount()) +
                           ": the file ends without its closing record; its last element is lost");
    }
    const std::string advice =
        client::EncodingAdvice(decoder.ReplacedBytes(), decoder.Evidence(), source.encoding, "ENCODING=");
    if (!advice.empty() && !std::exchange(source.states[nextFile - 1].encodingTold, true))
        session.Report(CE_Warning, CPLE_AppDefined, source.names[nextFile - 1] + ": " + advice);
    decoder = client::TextDecoder(source.encoding);  // what it counted belongs to this file
    importer.reset();
}

void ElementReader::ReadElements(ModuleSession& session, Batch& batch) {
    constexpr int lineRead = 1;
    for (size_t elements = 0; elements < batchElements && batch.vertices.size() < batchVertices; ++elements) {
        const int kind = importer->ReadNext();
        if (kind == 0) {
            EndFile(session);
            return;
        }
        if (kind == lineRead) {
            if (content != Content::texts) CopyLine(session, batch);
        } else if (Wants(Content::texts)) {
            CopyText(session, batch);
        }
    }
}

void ElementReader::CopyLine(ModuleSession& session, Batch& batch) {
    LineRecord line;
    line.first = batch.vertices.size();
    importer->GetLayer(&line.layer);
    gapBefore = false;
    const int elements = importer->GetElementCount();
    for (int i = 0; i < elements; ++i) CopyVertex(session, i, line, batch);
    FindStrokes(batch, line);
    if (line.strokes > 0) ++linesSeen;
    if (Wants(Content::points)) AddPoints(batch, line);
    if (line.strokes > 0 && Wants(Content::lines)) batch.lines.push_back(line);
}

void ElementReader::CopyVertex(ModuleSession& session, int index, LineRecord& line, Batch& batch) {
    const int type = importer->GetElementType(index);
    VertexValues values;
    importer->GetElementValues(index, &values.valueM, &values.valueR, &values.valueU);
    values.valueU *= source.gonsOfAngle;
    values.symbol = importer->GetElementSymbolCode(index);
    const char* code = importer->GetElementCode(index);
    values.code = AddString(batch, code, std::strlen(code));
    if (type == 0) {
        if (line.count > 0) AddValues(batch.values.back(), values);
        return;
    }
    double point[3];
    importer->GetElementPoint(index, point);
    if (!IsPlace(point)) {
        LeaveOut(session);
        gapBefore = true;
        return;
    }
    values.type = type == 1 ? '?' : static_cast<char>(type);
    values.begins = type == 'P' || std::exchange(gapBefore, false);
    batch.vertices.emplace_back(point[0], point[1]);
    batch.values.push_back(values);
    ++line.count;
}

void ElementReader::LeaveOut(ModuleSession& session) {
    if (std::exchange(source.states[nextFile - 1].leftOut, true)) return;
    session.Report(CE_Warning, CPLE_AppDefined,
                   source.names[nextFile - 1] + ", before line " + std::to_string(importer->GetLineCount()) +
                       ": a coordinate is no finite number; such points are left out");
}

void ElementReader::AddPoints(Batch& batch, const LineRecord& line) {
    PointRecord point;
    point.line = line.strokes > 0 ? linesSeen : 0;
    point.layer = line.layer;
    for (size_t i = 0; i < line.count; ++i) {
        point.vertex = line.first + i;
        point.index = static_cast<int>(i);
        const VertexValues& values = batch.values[point.vertex];
        if (values.code != 0) point.code = values.code;
        if (values.symbol != 0 || !values.stroked) batch.points.push_back(point);
    }
}

void ElementReader::CopyText(ModuleSession& session, Batch& batch) {
    TextRecord text;
    importer->GetLayer(&text.layer);
    double point[3];
    importer->GetTextPoint(point);
    if (!IsPlace(point)) return LeaveOut(session);
    text.point = OGRRawPoint(point[0], point[1]);
    importer->GetTextAttributes(&text.valueD, &text.valueF, &text.height, &text.rotation);
    text.rotation *= source.gonsOfAngle;
    text.code = importer->GetTextCode();
    decoded.clear();
    decoder.Append(importer->GetText(), decoded);
    text.text = AddString(batch, decoded.data(), decoded.size());
    batch.texts.push_back(text);
}

}  // namespace vemrado::gdal
