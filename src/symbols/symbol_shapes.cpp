#include "symbols/symbol_shapes.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "symbols/tagged_file.h"

namespace vemrado {

namespace {

constexpr uint32_t headerSize = 6;
constexpr uint32_t rawPointSize = 4;
constexpr uint16_t largestCount = std::numeric_limits<uint16_t>::max();
constexpr uint64_t largestBuffer = std::numeric_limits<uint32_t>::max();

// The start of a drawing's record. Bytes that the file does not have count as 0.
struct DrawingHeader {
    uint32_t valueSize;
    uint16_t secondWord;
    uint16_t partCount;

    uint32_t PartSize() const { return 2u * partCount; }
    bool PartsFit() const { return headerSize + PartSize() <= valueSize; }
    bool PointsFit(uint32_t pointCount) const {
        return PartsFit() && pointCount <= (valueSize - headerSize - PartSize()) / rawPointSize;
    }
};

class ShapeFileLoader {
  public:
    ShapeFileLoader(CSymbolShapes& shapeSet, const char* path) : shapes(shapeSet), reader(path, 1) {}

    bool Load();

  private:
    bool NextDrawing(DrawingHeader& header);
    void Measure();
    uint32_t MeasurePoints(const DrawingHeader& header);
    bool Allocate();
    void Fill();
    void FillRecord(CSymbolShape& record, const DrawingHeader& header);

    CSymbolShapes& shapes;
    CTaggedFileReader reader;
    int16_t lastHeight = 0;
    uint64_t wordsTotal = 0;   // bytes
    uint64_t pointsTotal = 0;  // bytes
};

bool ShapeFileLoader::Load() {
    if (reader.Check() != taggedFileValid) return false;
    Measure();
    shapes.height = lastHeight;
    if (shapes.count == 0 || reader.Rewind() == 0 || !Allocate()) return false;
    Fill();
    return !reader.Failed();
}

// To the next drawing, with the height noted that stands on the way.
bool ShapeFileLoader::NextDrawing(DrawingHeader& header) {
    CSharedString name;
    int32_t type = taggedNone;
    uint32_t size = 0;
    while (reader.NextRecord(name, type, size) != 0) {
        uint8_t bytes[headerSize] = {};
        if (type == taggedInt16 && name.View() == "HEIGHT" && reader.ReadValue(bytes, 2) == 2) {
            lastHeight = static_cast<int16_t>(ReadWord(bytes));
        }
        if (type != taggedShortBlock || name.View() != "SYM") continue;
        reader.ReadValue(bytes, headerSize);
        header = {size, ReadWord(bytes + 2), ReadWord(bytes + 4)};
        return true;
    }
    return false;
}

void ShapeFileLoader::Measure() {
    DrawingHeader header;
    while (shapes.count < largestCount && NextDrawing(header)) {
        ++shapes.count;
        const uint32_t pointCount = MeasurePoints(header);
        if (!header.PointsFit(pointCount)) continue;
        wordsTotal += header.PartSize() + pointCount * rawPointSize;
        pointsTotal += pointCount * sizeof(CShapePoint);
    }
}

uint32_t ShapeFileLoader::MeasurePoints(const DrawingHeader& header) {
    uint32_t pointCount = 0;
    for (uint32_t i = 0; i < header.partCount && header.PartsFit(); ++i) {
        uint8_t word[2] = {};
        if (reader.ReadValue(word, sizeof word) == 0) break;
        pointCount += ReadWord(word) & partPointMask;
    }
    return pointCount;
}

// What is measured fits in its records, and so in the file but for the last record's part that the file may
// lack.
bool ShapeFileLoader::Allocate() {
    if (wordsTotal > largestBuffer || pointsTotal > largestBuffer) return false;
    shapes.wordsSize = wordsTotal > 0 ? static_cast<uint32_t>(wordsTotal) : 1;
    shapes.pointsSize = pointsTotal > 0 ? static_cast<uint32_t>(pointsTotal) : 1;
    shapes.records = static_cast<CSymbolShape*>(std::calloc(shapes.count, sizeof(CSymbolShape)));
    shapes.words = static_cast<uint8_t*>(std::calloc(shapes.wordsSize, 1));
    shapes.points = static_cast<CShapePoint*>(std::calloc(shapes.pointsSize, 1));
    return shapes.records != nullptr && shapes.words != nullptr && shapes.points != nullptr;
}

void ShapeFileLoader::Fill() {
    shapes.wordsSize = shapes.pointsSize = 0;  // from here on what is filled
    DrawingHeader header;
    for (uint32_t k = 0; k < shapes.count && NextDrawing(header); ++k) FillRecord(shapes.records[k], header);
    shapes.wordsUsed = shapes.wordsSize;
    shapes.pointsUsed = shapes.pointsSize;
    shapes.countCopy = shapes.count;
}

// The room is checked against what was measured, too: the file may have changed in between.
void ShapeFileLoader::FillRecord(CSymbolShape& record, const DrawingHeader& header) {
    record.secondWord = header.secondWord;
    record.parts = shapes.words + shapes.wordsSize;
    record.points = shapes.points + shapes.pointsSize / sizeof(CShapePoint);
    const uint64_t room = wordsTotal - shapes.wordsSize;
    if (header.partCount == 0 || !header.PartsFit() || header.PartSize() > room) return;
    reader.ReadValue(record.parts, header.PartSize());
    const uint32_t pointCount = CountPoints(record.parts, header.partCount);
    const uint32_t rawSize = pointCount * rawPointSize;
    const uint32_t pointSize = pointCount * static_cast<uint32_t>(sizeof(CShapePoint));
    if (!header.PointsFit(pointCount) || rawSize > room - header.PartSize() ||
        pointSize > pointsTotal - shapes.pointsSize) {
        std::memset(record.parts, 0, header.PartSize());  // the next drawing's place, which must be clean
        return;
    }
    if (rawSize > 0) reader.ReadValue(record.parts + header.PartSize(), rawSize);
    record.partCount = header.partCount;
    shapes.wordsSize += header.PartSize() + rawSize;
    shapes.pointsSize += pointSize;
}

}  // namespace

uint32_t CountPoints(const uint8_t* parts, uint16_t partCount) {
    uint32_t count = 0;
    for (uint32_t i = 0; i < partCount; ++i) count += ReadWord(parts + 2 * i) & partPointMask;
    return count;
}

CSymbolShapes::~CSymbolShapes() {
    ReleaseShapes(*this);
}

CSymbolShapes& LoadShapeFile(CSymbolShapes& shapes, const char* path) {
    ReleaseShapes(shapes);
    shapes.height = 0;
    shapes.fileName.Assign(path);
    if (!ShapeFileLoader(shapes, path).Load()) shapes.count = 0;
    return shapes;
}

void ReleaseShapes(CSymbolShapes& shapes) {
    shapes.count = shapes.countCopy = 0;
    shapes.wordsUsed = shapes.wordsSize = shapes.pointsUsed = shapes.pointsSize = 0;
    std::free(shapes.words);
    std::free(shapes.points);
    std::free(shapes.records);
    shapes.words = nullptr;
    shapes.points = nullptr;
    shapes.records = nullptr;
    shapes.fileName = CSharedString();
}

}  // namespace vemrado
