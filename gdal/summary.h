// Counts and extents of the layers, known once the file was read to its end by whoever came first.

#pragma once

#include <ogr_core.h>

#include <array>
#include <cstddef>
#include <optional>

#include "elements.h"

namespace vemrado::gdal {

enum LayerKind : size_t { lineLayer, pointLayer, textLayer, layerKinds };

struct LayerTotals {
    GIntBig features = 0;
    GIntBig multiLines = 0;  // lines of more than one stroke
    OGREnvelope extent;      // not initialised while there are no features
};

using Summary = std::array<std::optional<LayerTotals>, layerKinds>;

struct Source;

// One pass over the files for all three layers. Gives nothing when it fails, which is reported to GDAL.
Summary Summarise(Source& source);

OGREnvelope EnvelopeOf(const Batch& batch, const LineRecord& line);
OGREnvelope EnvelopeOf(const Batch& batch, const PointRecord& point);
OGREnvelope EnvelopeOf(const Batch& batch, const TextRecord& text);

// Adds a record to what is known of its layer.
inline void Count(LayerTotals& summary, const OGREnvelope& envelope) {
    ++summary.features;
    summary.extent.Merge(envelope);
}

}  // namespace vemrado::gdal
