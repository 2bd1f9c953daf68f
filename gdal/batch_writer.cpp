#include "batch_writer.h"

#include <algorithm>
#include <numbers>
#include <string_view>

namespace vemrado::gdal {

namespace {

uint32_t AddString(Batch& batch, std::string_view text) {
    if (text.empty()) return 0;
    const size_t place = batch.strings.size();
    batch.strings.insert(batch.strings.end(), text.begin(), text.end());
    batch.strings.push_back('\0');
    return static_cast<uint32_t>(place);
}

CodeNumber NumberOf(const map::Code& code) {
    return {code.Given(), code.number};
}

std::span<const map::Stroke> StrokesOf(const map::MapLine& line, bool split) {
    return split ? line.strokes : line.wholeStrokes;
}

// The first code of a whole line, wherever it stands.
CodeNumber FirstCode(const map::MapLine& line) {
    const auto isGiven = [](const char* code) { return *code != '\0'; };
    const auto found = std::ranges::find_if(line.codes, isGiven);
    if (found == line.codes.end()) return {};
    return {true, line.codeNumbers[static_cast<size_t>(found - line.codes.begin())]};
}

}  // namespace

BatchWriter::BatchWriter(Content wanted, bool split, map::AngleUnit unit)
    : content(wanted), splitByCode(split), gonsOfUnit(1) {
    if (unit == map::AngleUnit::degree) gonsOfUnit = 400.0 / 360;
    if (unit == map::AngleUnit::radian) gonsOfUnit = 200 / std::numbers::pi;
}

void BatchWriter::Add(const map::MapLine& line, Batch& batch) {
    if (Wants(Content::points)) MarkStroked(line);
    nextSymbol = 0;
    const size_t strokes = StrokesOf(line, splitByCode).size();
    size_t stroke = 0;
    size_t begin = 0;
    do {
        const Part part = NextPart(line, stroke, begin);
        AddPart(line, part, batch);
        stroke = part.endStroke;
        begin = part.end;
    } while (stroke < strokes);
}

// Strokes of one code in a row, and the elements up to where the next part begins. The first part has what
// stands before it too.
BatchWriter::Part BatchWriter::NextPart(const map::MapLine& line, size_t firstStroke, size_t begin) const {
    const std::span<const map::Stroke> strokes = StrokesOf(line, splitByCode);
    Part part{firstStroke, strokes.size(), begin, line.points.size(), false};
    if (firstStroke > 0) {
        const map::Stroke& before = strokes[firstStroke - 1];
        part.joined = strokes[firstStroke].first + 1 == before.first + before.count;
        part.begin = strokes[firstStroke].first;
    }
    if (!splitByCode) return part;
    for (size_t i = firstStroke + 1; i < strokes.size(); ++i) {
        if (strokes[i].code.text == strokes[firstStroke].code.text) continue;
        const map::Stroke& last = strokes[i - 1];
        part.endStroke = i;
        part.end = std::max(strokes[i].first, last.first + last.count);
        break;
    }
    return part;
}

void BatchWriter::AddPart(const map::MapLine& line, const Part& part, Batch& batch) {
    const size_t first = AddVertices(line, part, batch);
    const bool isLine = part.firstStroke < part.endStroke;
    if (isLine) ++linesSeen;
    if (Wants(Content::points)) AddPoints(line, part, first, batch);
    if (!isLine || !Wants(Content::lines)) return;
    const std::span<const map::Stroke> strokes = StrokesOf(line, splitByCode);
    LineRecord record;
    record.first = first;
    record.count = part.end - part.begin;
    record.firstStroke = batch.strokes.size();
    record.strokes = part.endStroke - part.firstStroke;
    record.layer = line.layer;
    record.code = splitByCode ? NumberOf(strokes[part.firstStroke].code) : FirstCode(line);
    for (size_t i = part.firstStroke; i < part.endStroke; ++i)
        batch.strokes.push_back({first + strokes[i].first - part.begin, strokes[i].count});
    batch.lines.push_back(record);
}

// Where they begin in the batch. The vertex at which a part is joined to the one before says everything of
// itself there; here it only begins a stroke.
size_t BatchWriter::AddVertices(const map::MapLine& line, const Part& part, Batch& batch) const {
    const size_t first = batch.vertices.size();
    for (size_t i = part.begin; i < part.end; ++i) {
        batch.vertices.emplace_back(line.points[i].x, line.points[i].y);
        VertexValues& values = batch.values.emplace_back();
        if (part.joined && i == part.begin) continue;
        values.valueM = line.valuesM[i];
        values.valueR = line.valuesR[i];
        values.valueU = line.valuesU[i] * gonsOfUnit;
        values.symbol = line.symbolCodes[i];
        values.code = AddString(batch, line.codes[i]);
        values.type = line.types[i];
    }
    return first;
}

void BatchWriter::MarkStroked(const map::MapLine& line) {
    stroked.assign(line.points.size(), false);
    for (const map::Stroke& stroke : line.wholeStrokes) {
        for (size_t i = 0; i < stroke.count; ++i) stroked[stroke.first + i] = true;
    }
}

void BatchWriter::AddPoints(const map::MapLine& line, const Part& part, size_t first, Batch& batch) {
    PointRecord point;
    point.line = part.firstStroke < part.endStroke ? linesSeen : 0;
    point.layer = line.layer;
    for (size_t i = part.joined ? part.begin + 1 : part.begin; i < part.end; ++i) {
        const bool hasSymbol = nextSymbol < line.symbols.size() && line.symbols[nextSymbol].element == i;
        if (stroked[i] && !hasSymbol) continue;
        PointRecord& added = batch.points.emplace_back(point);
        added.vertex = first + (i - part.begin);
        added.index = static_cast<int>(i - part.begin);
        if (!hasSymbol) continue;
        const map::PlacedSymbol& symbol = line.symbols[nextSymbol++];
        added.pen = NumberOf(symbol.code);
        added.rotation = symbol.rotation;
        added.drawable = symbol.drawable;
    }
}

void BatchWriter::Add(const map::MapText& text, Batch& batch) {
    TextRecord& record = batch.texts.emplace_back();
    record.point = OGRRawPoint(text.point.x, text.point.y);
    record.height = text.height;
    record.valueU = text.valueU * gonsOfUnit;
    record.rotation = text.rotation;
    record.text = AddString(batch, text.text);
    record.layer = text.layer;
    record.code = text.code;
    record.valueD = text.valueD;
    record.valueF = text.valueF;
    record.anchor = text.anchor;
    record.face = text.face;
    record.drawable = text.fault == map::TextFault::none;
}

}  // namespace vemrado::gdal
