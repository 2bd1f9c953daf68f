// The layers of a VKM file. Each reads the file for itself, so they can be read in any order and interleaved.

#pragma once

#include <memory>

#include "element_reader.h"
#include "map_layer.h"
#include "styles.h"
#include "summary.h"

namespace vemrado::gdal {

// What the layers of one dataset share.
struct SharedState {
    Source source;
    Summary summary;
    std::string dataDirectory;     // of the symbology; empty: features have no styles
    std::optional<Styles> styles;  // none until asked for

    // Counts the file when it was not counted yet; false when that fails.
    bool Summarised();
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

    // A line of several strokes is known to be in the layer.
    bool HasMultiLines() const { return state.summary[kind] && state.summary[kind]->multiLines > 0; }

  private:
    // A place in the layer.
    struct Cursor {
        Cursor(Source& source, Content content) : reader(source, content) {}

        ElementReader reader;
        Batch batch;
        size_t next = 0;     // record of the batch
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
    std::unique_ptr<Cursor> StartCursor() const;

    SharedState& state;
    LayerKind kind;
    std::unique_ptr<Cursor> reading;
    std::unique_ptr<Cursor> lookup;  // of GetFeature
};

}  // namespace vemrado::gdal
