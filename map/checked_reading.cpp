#include "map/checked_reading.h"

#include <utility>

namespace vemrado::map {
namespace {

constexpr std::string_view recordLetters = "*DGKLRSTUV";
constexpr LetterSet elementTypes("CKLPR");

bool BelongsToHeader(unsigned char opened) {
    return opened == 0 || opened == 'V' || opened == 'R' || opened == 'D' || opened == '*';
}

}  // namespace

CheckedReading::CheckedReading(ByteSource source, client::Encoding encoding, FindingSink& findingSink,
                               ElementSink* elementSink)
    : lines(std::move(source), encoding, findingSink),
      findings(findingSink),
      elements(elementSink),
      header(findingSink) {}

void CheckedReading::Run() {
    ReadHeader();
    if (!Complete()) ReadElements();
    CheckEnd();
}

CheckedReading::RecordClass CheckedReading::Classify(Field field) {
    if (IsNone(field)) return emptyLine;
    if (field[0] != '&') return continuation;
    const bool known = field.size() > 1 && recordLetters.find(field[1]) != std::string_view::npos;
    return known ? static_cast<RecordClass>(field[1]) : unknownRecord;
}

// Takes a line and its first field.
bool CheckedReading::NextLine() {
    if (!lines.Next(line)) return false;
    cursor = FieldCursor(line.text);
    first = cursor.NextToken();
    opened = Classify(first);
    place.reset();
    quiet = false;
    namedTo = nullptr;
    if (opened == unknownRecord) Report(Rule::unknownRecord, first);
    return true;
}

// The records V, R and D, comments and empty lines. The line that ends the header starts its own record.
void CheckedReading::ReadHeader() {
    RecordClass last = emptyLine;
    while (NextLine()) {
        last = opened;
        if (!BelongsToHeader(opened))
            header.End(line.PlaceOf(IsNone(first) ? line.text.data() : first.data()));
        if (opened > continuation) {
            StartRecord(opened);
        } else if (opened == continuation) {
            CheckStray();
        }
        SendFindings();
        if (!BelongsToHeader(opened)) break;
    }
    state = last;
    FlushVertex();
}

// An element is complete when the next record begins, and belongs to the layer that was in force before that.
void CheckedReading::ReadElements() {
    while (state != 'K' && NextLine()) {
        if (opened == emptyLine || opened == continuation) {
            ContinueRecord();
        } else if (opened != unknownRecord) {
            FlushVertex();
            elementLayer = layer;
            const RecordClass completed = std::exchange(state, opened);
            CheckedText completedText;
            if (completed == 'T') completedText = std::move(text);
            StartRecord(opened);
            HandOver(completed, completedText);
        }
        SendFindings();
    }
}

// A host asks for the next element then, and what was begun is the first of its line.
void CheckedReading::HandOver(RecordClass completed, const CheckedText& completedText) {
    if (completed == 'L' && elements != nullptr) elements->Line(vertices, elementLayer);
    if (completed == 'T' && elements != nullptr) elements->Text(completedText, elementLayer);
    if (completed != 'L' && completed != 'T') return;
    vertices.clear();
    FlushVertex();
}

void CheckedReading::FlushVertex() {
    if (!vertexPending) return;
    if (elements != nullptr) vertices.push_back(vertex);
    vertexPending = false;
}

void CheckedReading::StartRecord(RecordClass letter) {
    if (firstStray) {
        firstStray->field = firstStrayField;
        findings.Take(*firstStray);
        firstStray.reset();
    }
    recordSeen = true;
    if (first.size() > 2 && letter != '*') Report(Rule::markRunOn, first, std::string(first.substr(2)));
    header.Record(letter, line.PlaceOf(first.data()), first, relative);
    if (letter == 'L' || letter == 'T') CheckLayer();
    Dispatch(letter);
    if (letter == 'K') CheckUnread();
}

// G, S, D and comments take nothing from their line.
void CheckedReading::Dispatch(RecordClass letter) {
    if (letter == 'V') ReadV();
    if (letter == 'R') ReadR();
    if (letter == 'U') ReadU();
    if (letter == 'L') StartLine();
    if (letter == 'T') StartText();
}

// A line that opens no record.
void CheckedReading::ContinueRecord() {
    if (state == 'L') {
        if (opened == continuation && elementTypes.Has(first[0])) {
            FlushVertex();
            StartVertex(first);
        } else {
            ContinueVertex();
        }
    } else if (state == 'T') {
        ContinueText();
    } else if (state == 'V' || state == 'R' || state == 'U') {
        Report(Rule::recordReadAgain, IsNone(first) ? line.text.substr(0, 0) : first,
               std::string(1, static_cast<char>(state)));
        quiet = true;
        Dispatch(state);
    } else if (opened == continuation) {
        CheckStray();
    }
}

// The origin's first number belongs to the file's first coordinate, which is y.
void CheckedReading::ReadV() {
    cursor.NextToken();
    const Point origin = ReadNumbers();
    originX = origin.x;
    originY = origin.y;
    CheckUnread();
}

void CheckedReading::ReadR() {
    for (int i = 0; i < 4; ++i) cursor.NextToken();
    const Field number = cursor.NextToken();
    scale = IsNone(number) ? 1000 : Real(number, number);
    if (scale <= 0) Report(Rule::scaleRange, number);
    const Field mode = cursor.NextToken();
    relative = !IsNone(mode) && (mode[0] == 'R' || mode[0] == 'r');
    if (relative) header.MakeRelative(line.PlaceOf(mode.data()), mode);
    CheckUnread();
}

void CheckedReading::ReadU() {
    constexpr int lastLayer = 11;
    const Field number = cursor.NextToken();
    layer.number = IsNone(number) ? 0 : Integer(number, number);
    layer.name = std::to_string(layer.number).substr(0, 2);
    layerGiven = true;
    if (IsNone(number)) {
        ReportMissing(Rule::unknownLayer, "0");
    } else if (layer.number < 1 || layer.number > lastLayer) {
        Report(Rule::unknownLayer, number, std::to_string(layer.number));
    }
    CheckUnread();
}

}  // namespace vemrado::map
