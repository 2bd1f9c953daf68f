// The parcels of the files of a source, with what is wrong with them told to GDAL.

#pragma once

#include <ogr_geometry.h>

#include <memory>
#include <span>
#include <vector>

#include "element_reader.h"
#include "map/parcels.h"

namespace vemrado::gdal {

// What is wrong with boundaries and numbers: cases of each kind, counted and told with the first places.
class ParcelFindings {
  public:
    void Add(const map::Parcels& made);
    // Warnings to GDAL.
    void Report(const std::string& file) const;

  private:
    struct Finding {
        int count = 0;
        std::string examples;

        void Add(map::Point place, const std::string& what = {});
        void Report(const std::string& file, const char* what) const;
    };
    Finding freeEnds;
    Finding between;
    Finding outside;
    Finding none;
    Finding several;
    bool tooManyCrossings = false;
};

std::unique_ptr<OGRPolygon> PolygonOf(const map::Parcel& parcel);

// Boundaries and numbers of a batch to whoever makes parcels of them.
template <typename AddBoundary, typename AddNumber>
void ForParcels(const Batch& batch, const map::ParcelLayers& layers, AddBoundary addBoundary,
                AddNumber addNumber) {
    std::vector<map::Point> points;
    for (const LineRecord& line : batch.lines) {
        if (line.layer != layers.boundaries) continue;
        for (const StrokeRecord& stroke : std::span(batch.strokes).subspan(line.firstStroke, line.strokes)) {
            points.clear();
            for (const OGRRawPoint& point : std::span(batch.vertices).subspan(stroke.first, stroke.count))
                points.push_back({point.x, point.y});
            addBoundary(std::span<const map::Point>(points));
        }
    }
    for (const TextRecord& text : batch.texts) {
        if (text.layer == layers.numbers)
            addNumber(map::Point{text.point.x, text.point.y}, batch.String(text.text));
    }
}

struct FileParcel {
    map::Parcel parcel;
    size_t source = 0;  // the file that it comes from

    std::unique_ptr<OGRPolygon> Shape() const { return PolygonOf(parcel); }
};

// The parcels of every file, each file by itself. Boundaries that enclose nothing, parcels without a number
// or with several, and numbers outside any parcel are warnings, each kind with its count and first places.
std::vector<FileParcel> BuildParcels(Source& source, const map::ParcelLayers& layers);

}  // namespace vemrado::gdal
