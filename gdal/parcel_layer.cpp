#include "parcel_layer.h"

namespace vemrado::gdal {

namespace {

enum ParcelField : int { parcelNumber, parcelTexts, parcelArea };
constexpr FieldSchema parcelFields[] = {{"number", OFTString, "Parcel number, the first text inside"},
                                        {"texts", OFTInteger, "Number texts inside"},
                                        {"area", OFTReal, "Area of the polygon"}};
constexpr LayerSchema parcelSchema = {"parcels", wkbPolygon, parcelFields};

OGREnvelope EnvelopeOf(const FileParcel& made) {
    const map::Box& bounds = made.parcel.area.bounds;
    OGREnvelope envelope;
    envelope.Merge(bounds.minX, bounds.minY);
    envelope.Merge(bounds.maxX, bounds.maxY);
    return envelope;
}

}  // namespace

ParcelLayer::ParcelLayer(Source& read, const map::ParcelLayers& chosen, const OGRSpatialReference* reference)
    : MapLayer(parcelSchema, read, reference), source(read), layers(chosen) {}

const std::vector<FileParcel>& ParcelLayer::Parcels() {
    if (!built) parcels = BuildParcels(source, layers);
    built = true;
    return parcels;
}

OGRFeature* ParcelLayer::Make(size_t index) {
    const FileParcel& made = parcels[index];
    const map::Parcel& parcel = made.parcel;
    auto feature = new OGRFeature(definition.Get());
    if (parcel.texts > 0) feature->SetField(parcelNumber, parcel.number.c_str());
    feature->SetField(parcelTexts, parcel.texts);
    feature->SetField(parcelArea, parcel.area.size);
    SetSource(*feature, source.names[made.source]);
    std::unique_ptr<OGRPolygon> shape = made.Shape();
    shape->assignSpatialReference(definition.Reference());
    feature->SetGeometryDirectly(shape.release());
    feature->SetFID(static_cast<GIntBig>(index) + 1);
    return feature;
}

OGRFeature* ParcelLayer::GetNextFeature() {
    while (next < Parcels().size()) {
        const size_t index = next++;
        const bool near =
            m_poFilterGeom == nullptr || EnvelopeOf(parcels[index]).Intersects(m_sFilterEnvelope) != 0;
        if (!near) continue;
        std::unique_ptr<OGRFeature> feature(Make(index));
        if (!Passes(*feature)) continue;
        ++m_nFeaturesRead;
        return feature.release();
    }
    return nullptr;
}

OGRErr ParcelLayer::SetNextByIndex(GIntBig index) {
    if (!Unfiltered()) return OGRLayer::SetNextByIndex(index);
    if (index < 0 || index >= static_cast<GIntBig>(Parcels().size())) return OGRERR_FAILURE;
    next = static_cast<size_t>(index);
    return OGRERR_NONE;
}

OGRFeature* ParcelLayer::GetFeature(GIntBig identifier) {
    if (identifier < 1 || identifier > static_cast<GIntBig>(Parcels().size())) return nullptr;
    return Make(static_cast<size_t>(identifier - 1));
}

GIntBig ParcelLayer::GetFeatureCount(int force) {
    if (!Unfiltered()) return OGRLayer::GetFeatureCount(force);
    if (!built && force == 0) return -1;
    return static_cast<GIntBig>(Parcels().size());
}

OGRErr ParcelLayer::GetExtent(OGREnvelope* extent, int force) {
    if (!built && force == 0) return OGRERR_FAILURE;
    OGREnvelope all;
    for (const FileParcel& parcel : Parcels()) all.Merge(EnvelopeOf(parcel));
    if (!all.IsInit()) return OGRERR_FAILURE;
    *extent = all;
    return OGRERR_NONE;
}

int ParcelLayer::TestCapability(const char* capability) {
    if (EQUAL(capability, OLCFastFeatureCount)) return built && Unfiltered();
    if (EQUAL(capability, OLCFastGetExtent)) return built;
    // Once built, the parcels are in memory.
    if (EQUAL(capability, OLCRandomRead)) return built;
    if (EQUAL(capability, OLCFastSetNextByIndex)) return built && Unfiltered();
    return EQUAL(capability, OLCStringsAsUTF8);
}

}  // namespace vemrado::gdal
