#include "vkm_layer.h"

#include <algorithm>

namespace vemrado::gdal {

namespace {

constexpr Content contents[layerKinds] = {Content::lines, Content::points, Content::texts};
const LayerSchema& SchemaOf(LayerKind kind) {
    if (kind == lineLayer) return lineSchema;
    return kind == pointLayer ? pointSchema : textSchema;
}

}  // namespace

bool SharedState::Summarised() {
    const auto known = [](const auto& layer) { return layer.has_value(); };
    if (std::ranges::all_of(summary, known)) return true;
    if (!Summarise(source)) return false;
    AddUp();
    return true;
}

bool SharedState::KnowsFiles() const {
    return std::ranges::all_of(source.states, [](const FileState& file) { return file.totals.has_value(); });
}

void SharedState::AddUp() {
    for (const LayerKind kind : {lineLayer, pointLayer, textLayer}) {
        LayerTotals& all = summary[kind].emplace();
        for (const FileState& file : source.states) {
            const LayerTotals& own = (*file.totals)[kind];
            all.features += own.features;
            if (own.features > 0) all.extent.Merge(own.extent);
        }
    }
}

const Styles* SharedState::StylesInUse() {
    if (dataDirectory.empty()) return nullptr;
    if (!styles) styles.emplace(*Symbology::Of(dataDirectory));
    return &*styles;
}

VkmLayer::VkmLayer(SharedState& shared, LayerKind layerKind, const OGRSpatialReference* reference)
    : MapLayer(SchemaOf(layerKind), shared.source, reference), state(shared), kind(layerKind) {}

VkmLayer::~VkmLayer() = default;

std::unique_ptr<VkmLayer::Cursor> VkmLayer::StartCursor(ElementReader::Skips skips) const {
    return std::make_unique<Cursor>(state.source, contents[kind], std::move(skips));
}

GIntBig VkmLayer::FeaturesOf(size_t file) const {
    return (*state.source.states[file].totals)[kind].features;
}

// What the files hold is found out first, once; it is known from an index.
std::unique_ptr<VkmLayer::Cursor> VkmLayer::StartReading() {
    const bool isOne = state.source.files.size() == 1;
    if (isOne || m_poFilterGeom == nullptr || !Summarise(state.source)) return StartCursor();
    return StartCursor([this, box = m_sFilterEnvelope](size_t file) {
        const OGREnvelope extent = ExtentOf(*state.source.states[file].totals);
        return !extent.IsInit() || extent.Intersects(box) == 0;
    });
}

size_t VkmLayer::FileOf(GIntBig identifier) const {
    const size_t files = state.source.files.size();
    size_t file = 0;
    for (GIntBig before = 0; file < files && before + FeaturesOf(file) < identifier; ++file)
        before += FeaturesOf(file);
    return file;
}

std::unique_ptr<VkmLayer::Cursor> VkmLayer::StartLookup(GIntBig identifier) const {
    if (state.source.files.size() == 1 || !state.KnowsFiles()) return StartCursor();
    return StartCursor([wanted = FileOf(identifier)](size_t file) { return file != wanted; });
}

bool VkmLayer::IsInReachOf(const Cursor& cursor, GIntBig identifier) const {
    return cursor.passed < identifier && (!cursor.reader.SkipsFiles() || cursor.file == FileOf(identifier));
}

void VkmLayer::ResetReading() {
    reading.reset();
}

size_t VkmLayer::RecordCount(const Batch& batch) const {
    if (kind == lineLayer) return batch.lines.size();
    if (kind == pointLayer) return batch.points.size();
    return batch.texts.size();
}

bool VkmLayer::OnRecord(Cursor& cursor) {
    while (cursor.next == RecordCount(cursor.batch)) {
        if (cursor.reader.State() != ReadState::reading) return false;
        cursor.reader.Fill(cursor.batch);
        cursor.next = 0;
        for (; cursor.file < cursor.batch.source; ++cursor.file) {
            if (cursor.reader.IsSkipped(cursor.file)) cursor.passed += FeaturesOf(cursor.file);
        }
        // The end of a full pass tells what there is.
        if (cursor.reader.State() == ReadState::complete && !cursor.reader.SkipsFiles())
            state.summary[kind] = cursor.counted;
    }
    return true;
}

OGREnvelope VkmLayer::Pass(Cursor& cursor) {
    const size_t record = cursor.next++;
    const Batch& batch = cursor.batch;
    const OGREnvelope envelope = kind == lineLayer    ? EnvelopeOf(batch, batch.lines[record])
                                 : kind == pointLayer ? EnvelopeOf(batch, batch.points[record])
                                                      : EnvelopeOf(batch, batch.texts[record]);
    Count(cursor.counted, envelope);
    if (kind == lineLayer && batch.lines[record].strokes > 1) ++cursor.counted.multiLines;
    ++cursor.passed;
    return envelope;
}

OGRFeature* VkmLayer::Make(const Cursor& cursor, size_t record) {
    const OGRFeatureDefn* defn = definition.Get();
    FeatureNeeds needs;
    needs.geometry = defn->IsGeometryIgnored() == 0 || m_poFilterGeom != nullptr ||
                     (m_poAttrQuery != nullptr && AttributeFilterEvaluationNeedsGeometry() != 0);
    // Also when styles are ignored: QGIS says so of every layer and takes them all the same.
    needs.styles = state.StylesInUse();
    const Batch& batch = cursor.batch;
    OGRFeature* feature = kind == lineLayer    ? MakeFeature(definition, batch, batch.lines[record], needs)
                          : kind == pointLayer ? MakeFeature(definition, batch, batch.points[record], needs)
                                               : MakeFeature(definition, batch, batch.texts[record], needs);
    SetSource(*feature, state.source.names[batch.source]);
    feature->SetFID(cursor.passed);
    return feature;
}

OGRFeature* VkmLayer::NextInRectangle(Cursor& cursor) {
    const size_t record = cursor.next;
    const OGREnvelope envelope = Pass(cursor);
    if (m_poFilterGeom != nullptr && envelope.Intersects(m_sFilterEnvelope) == 0) return nullptr;
    return Make(cursor, record);
}

OGRFeature* VkmLayer::GetNextFeature() {
    if (reading == nullptr) reading = StartReading();
    while (OnRecord(*reading)) {
        std::unique_ptr<OGRFeature> feature(NextInRectangle(*reading));
        if (feature == nullptr || !Passes(*feature)) continue;
        ++m_nFeaturesRead;
        return feature.release();
    }
    return nullptr;
}

OGRErr VkmLayer::SetNextByIndex(GIntBig index) {
    if (!Unfiltered()) return OGRLayer::SetNextByIndex(index);
    if (index < 0) return OGRERR_FAILURE;
    if (reading == nullptr || reading->passed > index) reading = StartCursor();
    while (reading->passed < index) {
        if (!OnRecord(*reading)) return OGRERR_FAILURE;
        Pass(*reading);
    }
    return OGRERR_NONE;
}

OGRFeature* VkmLayer::GetFeature(GIntBig identifier) {
    if (identifier < 1) return nullptr;
    if (lookup == nullptr || !IsInReachOf(*lookup, identifier)) lookup = StartLookup(identifier);
    while (OnRecord(*lookup)) {
        const size_t record = lookup->next;
        Pass(*lookup);
        if (lookup->passed == identifier) return Make(*lookup, record);
    }
    lookup.reset();
    return nullptr;
}

GIntBig VkmLayer::GetFeatureCount(int force) {
    if (!Unfiltered()) return OGRLayer::GetFeatureCount(force);
    const auto& known = state.summary[kind];
    if (!known && (force == 0 || !state.Summarised())) return -1;
    return known->features;
}

OGRErr VkmLayer::GetExtent(OGREnvelope* extent, int force) {
    const auto& known = state.summary[kind];
    if (!known && (force == 0 || !state.Summarised())) return OGRERR_FAILURE;
    if (known->features == 0) return OGRERR_FAILURE;
    *extent = known->extent;
    return OGRERR_NONE;
}

int VkmLayer::TestCapability(const char* capability) {
    const bool known = state.summary[kind].has_value();
    if (EQUAL(capability, OLCFastFeatureCount)) return known && Unfiltered();
    if (EQUAL(capability, OLCFastGetExtent)) return known;
    if (EQUAL(capability, OLCFastSpatialFilter)) return state.source.files.size() > 1 && state.KnowsFiles();
    if (EQUAL(capability, OLCFastGetArrowStream)) return m_poAttrQuery == nullptr;
    if (EQUAL(capability, OLCStringsAsUTF8)) return TRUE;
    if (EQUAL(capability, OLCIgnoreFields)) return TRUE;
    return FALSE;
}

}  // namespace vemrado::gdal
