// The layers of a VKM file. Each reads the file for itself, so they can be read in any order and interleaved.

#pragma once

#include <array>
#include <memory>
#include <optional>
#include <utility>

#include "element_reader.h"
#include "map_layer.h"
#include "styles.h"
#include "summary.h"

namespace vemrado::gdal {

class ArrowRows;

// What the layers of one dataset share.
struct SharedState {
    Source source;
    // Of the layers of all files, once known.
    std::array<std::optional<LayerTotals>, layerKinds> summary;
    std::string dataDirectory;     // of the symbology; empty: features have no styles
    std::optional<Styles> styles;  // none until asked for

    // Counts the files that were not counted yet; false when that fails.
    bool Summarised();
    // Whether there is a count of every file.
    bool KnowsFiles() const;
    // What the counts of files come to.
    void AddUp();
    // Null when features have none.
    const Styles* StylesInUse();
};

class VkmLayer : public MapLayer {
  public:
    VkmLayer(SharedState& state, LayerKind kind, const OGRSpatialReference* reference);
    ~VkmLayer() override;

    void ResetReading() override;
    OGRFeature* GetNextFeature() override;
    OGRErr SetNextByIndex(GIntBig index) override;
    OGRFeature* GetFeature(GIntBig identifier) override;
    GIntBig GetFeatureCount(int force) override;
    using MapLayer::GetExtent;
    OGRErr GetExtent(OGREnvelope* extent, int force) override;
    int TestCapability(const char* capability) override;

  protected:
    int GetNextArrowArray(ArrowArrayStream* stream, ArrowArray* array) override;

  private:
    // A place in the layer.
    struct Cursor {
        Cursor(Source& source, Content content, ElementReader::Skips skips)
            : reader(source, content, std::move(skips)) {}

        ElementReader reader;
        Batch batch;
        size_t next = 0;     // record of the batch
        size_t file = 0;     // that the batch is from
        GIntBig passed = 0;  // features before it: the identifier of the last one
        LayerTotals counted;
    };

    size_t RecordCount(const Batch& batch) const;
    // True when the cursor stands on a record; reads on where the batch is used up.
    bool OnRecord(Cursor& cursor);
    // Steps over the record; its envelope.
    OGREnvelope Pass(Cursor& cursor);
    OGRFeature* Make(const Cursor& cursor, size_t record);
    // The feature that the cursor stands on, passed; null when the filter's rectangle excludes it.
    OGRFeature* NextInRectangle(Cursor& cursor);
    // Whether a stream's arrays are made without features.
    bool MakesArrays() const;
    bool IsInFilter(const Cursor& cursor, size_t record, const OGREnvelope& envelope);
    // Adds the record that the cursor stands on, unless the filter excludes it, and passes it.
    void AddRow(ArrowRows& rows, Cursor& cursor);
    void FillArray(ArrowArray& array);
    // Over all files, or without those of which skips says so, whose features are known.
    std::unique_ptr<Cursor> StartCursor(ElementReader::Skips skips = {}) const;
    // Over the files that the filter's rectangle touches.
    std::unique_ptr<Cursor> StartReading();
    std::unique_ptr<Cursor> StartLookup(GIntBig identifier) const;
    GIntBig FeaturesOf(size_t file) const;
    // The file that the feature is in, where the counts of all are known.
    size_t FileOf(GIntBig identifier) const;
    bool IsInReachOf(const Cursor& cursor, GIntBig identifier) const;

    SharedState& state;
    LayerKind kind;
    std::unique_ptr<Cursor> reading;
    std::unique_ptr<Cursor> lookup;  // of GetFeature
};

}  // namespace vemrado::gdal
