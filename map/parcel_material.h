// What of a map makes its parcels.

#pragma once

#include "map/parcels.h"
#include "map/reading.h"

namespace vemrado::map {

// Takes the element that was just read, where it is a boundary or a number of a parcel.
inline void AddToParcels(ParcelBuilder& builder, const ParcelLayers& layers, ElementKind kind,
                         const MapLine& line, const MapText& text) {
    if (kind == ElementKind::line && line.layer == layers.boundaries) {
        for (const Stroke& stroke : line.wholeStrokes)
            builder.AddBoundary(line.points.subspan(stroke.first, stroke.count));
    }
    if (kind == ElementKind::text && text.layer == layers.numbers && text.fault != TextFault::place)
        builder.AddNumber(text.point, text.text);
}

}  // namespace vemrado::map
