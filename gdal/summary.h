// Counts and extents of the layers, known once the file was read to its end by whoever came first.

#pragma once

#include <ogr_core.h>

#include <array>
#include <cstddef>

#include "elements.h"

namespace vemrado::gdal {

enum LayerKind : size_t { lineLayer, pointLayer, textLayer, layerKinds };

struct LayerTotals {
    GIntBig features = 0;
    GIntBig multiLines = 0;  // lines of more than one stroke
    OGREnvelope extent;      // not initialised while there are no features
};

// Of a file: its layers.
using FileTotals = std::array<LayerTotals, layerKinds>;

// Around everything; not initialised where there is nothing.
OGREnvelope ExtentOf(const FileTotals& totals);

struct Source;

// Reads the files of which it is not known what they hold, each once. False when that fails, which is
// reported to GDAL.
bool Summarise(Source& source);

OGREnvelope EnvelopeOf(const Batch& batch, const LineRecord& line);
OGREnvelope EnvelopeOf(const Batch& batch, const PointRecord& point);
OGREnvelope EnvelopeOf(const Batch& batch, const TextRecord& text);

// Adds all records of the batch.
void Count(FileTotals& totals, const Batch& batch);
// Adds a record to what is known of its layer.
inline void Count(LayerTotals& summary, const OGREnvelope& envelope) {
    ++summary.features;
    summary.extent.Merge(envelope);
}

}  // namespace vemrado::gdal
