// Copies what a reading says of a line or a text into the records of a batch.

#pragma once

#include "elements.h"
#include "map/reading.h"

namespace vemrado::gdal {

class BatchWriter {
  public:
    // unit: of rotations in the file; in the records they are gons.
    BatchWriter(Content wanted, bool split, map::AngleUnit unit);

    bool Wants(Content part) const {
        return (static_cast<unsigned>(content) & static_cast<unsigned>(part)) != 0;
    }
    void Add(const map::MapLine& line, Batch& batch);
    void Add(const map::MapText& text, Batch& batch);

  private:
    // A run of strokes that becomes one line of the layer, with the line's elements that it covers.
    struct Part {
        size_t firstStroke;
        size_t endStroke;
        size_t begin;
        size_t end;
        bool joined;  // begins where the part before it ends
    };

    Part NextPart(const map::MapLine& line, size_t firstStroke, size_t begin) const;
    void AddPart(const map::MapLine& line, const Part& part, Batch& batch);
    size_t AddVertices(const map::MapLine& line, const Part& part, Batch& batch) const;
    void AddPoints(const map::MapLine& line, const Part& part, size_t first, Batch& batch);
    void MarkStroked(const map::MapLine& line);

    Content content;
    bool splitByCode;
    double gonsOfUnit;
    GIntBig linesSeen = 0;      // the identifier of the last one
    size_t nextSymbol = 0;      // of the line being added
    std::vector<bool> stroked;  // which of its elements lie on a stroke
};

}  // namespace vemrado::gdal
