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

Summary Summarise(Source& source) {
    std::array<LayerTotals, layerKinds> counted;
    ElementReader reader(source, Content::everything);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        for (const LineRecord& line : batch.lines) {
            Count(counted[lineLayer], EnvelopeOf(batch, line));
            if (line.strokes > 1) ++counted[lineLayer].multiLines;
        }
        for (const PointRecord& point : batch.points) Count(counted[pointLayer], EnvelopeOf(batch, point));
        for (const TextRecord& text : batch.texts) Count(counted[textLayer], EnvelopeOf(batch, text));
    }
    if (reader.State() == ReadState::failed) return {};
    return {counted[lineLayer], counted[pointLayer], counted[textLayer]};
}

}  // namespace vemrado::gdal
