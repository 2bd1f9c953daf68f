#include "summary.h"

#include <algorithm>

#include "element_reader.h"

namespace vemrado::gdal {

namespace {

OGREnvelope EnvelopeOfPoint(const OGRRawPoint& point) {
    OGREnvelope envelope;
    envelope.MinX = envelope.MaxX = point.x;
    envelope.MinY = envelope.MaxY = point.y;
    return envelope;
}

}  // namespace

OGREnvelope EnvelopeOf(const Batch& batch, const LineRecord& line) {
    OGREnvelope envelope;
    for (size_t stroke = line.firstStroke; stroke < line.firstStroke + line.strokes; ++stroke) {
        const auto& [first, count] = batch.strokes[stroke];
        for (size_t i = first; i < first + count; ++i) {
            const OGRRawPoint& point = batch.vertices[i];
            envelope.MinX = std::min(envelope.MinX, point.x);
            envelope.MinY = std::min(envelope.MinY, point.y);
            envelope.MaxX = std::max(envelope.MaxX, point.x);
            envelope.MaxY = std::max(envelope.MaxY, point.y);
        }
    }
    return envelope;
}

OGREnvelope EnvelopeOf(const Batch& batch, const PointRecord& point) {
    return EnvelopeOfPoint(batch.vertices[point.vertex]);
}

OGREnvelope EnvelopeOf(const Batch&, const TextRecord& text) {
    return EnvelopeOfPoint(text.point);
}

OGREnvelope ExtentOf(const FileTotals& totals) {
    OGREnvelope all;
    for (const LayerTotals& layer : totals) {
        if (layer.features > 0) all.Merge(layer.extent);
    }
    return all;
}

void Count(FileTotals& totals, const Batch& batch) {
    for (const LineRecord& line : batch.lines) {
        Count(totals[lineLayer], EnvelopeOf(batch, line));
        if (line.strokes > 1) ++totals[lineLayer].multiLines;
    }
    for (const PointRecord& point : batch.points) Count(totals[pointLayer], EnvelopeOf(batch, point));
    for (const TextRecord& text : batch.texts) Count(totals[textLayer], EnvelopeOf(batch, text));
}

bool Summarise(Source& source) {
    std::vector<FileTotals> counted(source.files.size());
    const auto isKnown = [&](size_t file) { return source.states[file].totals.has_value(); };
    ElementReader reader(source, Content::everything, isKnown);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        Count(counted[batch.source], batch);
    }
    if (reader.State() == ReadState::failed) return false;
    for (size_t file = 0; file < counted.size(); ++file) {
        if (!isKnown(file)) source.states[file].totals = counted[file];
    }
    return true;
}

}  // namespace vemrado::gdal
