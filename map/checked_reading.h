// A reading of a map file with places: every element with the lines that it stands on, and everything that
// the reader of a map passes over, cuts or takes for something else.
//
// It is written for plainness, one character at a time, and shares nothing with the module, whose reading it
// checks: the two must agree on any bytes. The grammar is that of docs/vkm-format.md.

#pragma once

#include <span>
#include <string>
#include <vector>

#include "map/checked_lines.h"
#include "map/field_cursor.h"
#include "map/findings.h"
#include "map/header_check.h"
#include "map/known_codes.h"

namespace vemrado::map {

struct CheckedVertex {
    Place place;            // of its type letter; of its line when it has none
    Point point;            // as orientation 1 has it, absolute
    bool hasPoint = false;  // false: made by key fields that came too late; at 0 0 in every orientation
    int type = 0;
    std::string code;
    double valueM = 1;
    double valueR = 0;
    int symbolCode = 0;
    double valueU = 0;
};

struct CheckedText {
    Place place;  // of its record's mark
    Point point;
    std::string text;  // at most 255 bytes
    int valueD = 2;
    int valueF = 1;
    double valueH = 1.7;  // as it stands in the file
    int code = 0;
    double valueU = 0;
};

struct CheckedLayer {
    int number = 0;
    std::string name;  // at most two characters; empty before the first layer record
};

// Called with each element that is complete, in the file's order.
class ElementSink {
  public:
    virtual void Line(std::span<const CheckedVertex> vertices, const CheckedLayer& layer) = 0;
    virtual void Text(const CheckedText& text, const CheckedLayer& layer) = 0;

  protected:
    ~ElementSink() = default;
};

class CheckedReading {
  public:
    // Without a sink for them no elements are kept, and memory does not grow with the longest line of a map
    // either. The sinks must outlive it.
    CheckedReading(ByteSource source, client::Encoding encoding, FindingSink& findings,
                   ElementSink* elements);

    // Says that a byte order mark stood before what the source gives.
    void NoteByteOrderMark() { lines.NoteByteOrderMark(); }

    // Checks places, codes, rotations and sizes too. The codes must outlive it.
    void CheckValues(const KnownCodes& codes) { known = &codes; }

    // Reads the whole file. What the source throws leaves it.
    void Run();

    // As they are at the place that has been read.
    double Scale() const { return scale; }
    bool Relative() const { return relative; }
    bool Complete() const { return state == 'K'; }

  private:
    // What opens a line: 0 for an empty one, 2 for a continuation, 1 for an unknown record, or its letter.
    using RecordClass = unsigned char;
    static constexpr RecordClass emptyLine = 0, unknownRecord = 1, continuation = 2;

    static RecordClass Classify(Field first);

    // The file: its header, its elements, what follows the closing record.
    bool NextLine();
    void ReadHeader();
    void ReadElements();
    void HandOver(RecordClass completed, const CheckedText& completedText);
    void FlushVertex();
    void CheckEnd();

    // The records, with the cursor behind the line's first field.
    void StartRecord(RecordClass letter);
    void ContinueRecord();
    void Dispatch(RecordClass letter);
    void ReadV();
    void ReadR();
    void ReadU();
    void StartLine();
    void StartVertex(Field type);
    void ContinueVertex();
    void ResetVertex();
    void StartText();
    void ReadQuoted();
    void ContinueText();
    void ApplyTextDefaults();

    // Fields.
    Point ReadPoint();
    Point ReadNumbers();
    Field firstNumber;  // of the point read last
    Field secondNumber;
    double Coordinate(Field field, FieldCursor behind);
    bool ReadKeys(LetterSet keys, bool behindPoint);
    void TakeKey(const KeyField& found);
    void TakeLineKey(const KeyField& found);
    void TakeTextKey(const KeyField& found);
    double Real(Field number, Field field);
    int Integer(Field number, Field field);

    // What is wrong with them.
    void CheckType(Field type);
    void CheckFirstField();
    void CheckStray();
    void CheckLayer();
    void CheckLineCode(const KeyField& found);
    void CheckExtent(Point point);
    void CheckKnown(Rule rule, const std::vector<int>& codes, int code, Field field);
    void CheckRotation(double value, const KeyField& found);
    void CheckSize(double value, const KeyField& found);
    void CheckBeforeText(FieldCursor between);
    void CheckPassedOver(const KeyField& found);
    void CheckUnread();

    // Findings of a line wait until its point is known. A missing thing is placed behind the line's last
    // field.
    void Report(Rule rule, Field field, std::string first = {}, std::string second = {});
    void ReportMissing(Rule rule, std::string argument = {});
    void SendFindings();

    CheckedLines lines;
    FindingSink& findings;
    ElementSink* elements;
    HeaderCheck header;

    // The line being read.
    CheckedLine line;
    FieldCursor cursor{{}};
    Field first;
    RecordClass opened = emptyLine;
    std::vector<Finding> waiting;
    std::optional<Point> place;     // of the element that the line belongs to
    bool quiet = false;             // what follows stands in wrong places: its findings say nothing
    const char* namedTo = nullptr;  // fields before this place have been named in a finding

    RecordClass state = unknownRecord;
    double originX = 0;
    double originY = 0;
    double scale = 1000;
    bool relative = false;
    CheckedLayer layer;
    CheckedLayer elementLayer;
    bool layerGiven = false;
    std::vector<CheckedVertex> vertices;
    CheckedVertex vertex;
    bool vertexPending = false;
    CheckedText text;
    uint32_t keysSeen = 0;  // of the element being read, a bit for each letter
    bool recordSeen = false;
    const KnownCodes* known = nullptr;  // null: values are not checked
    int lastCode = -1;                  // a line code that is known
    std::optional<Finding> firstStray;  // before the first record
    std::string firstStrayField;
};

}  // namespace vemrado::map
