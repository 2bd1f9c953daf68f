#include "parcels.h"

#include <cpl_conv.h>
#include <cpl_quad_tree.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "boundary_check.h"

namespace vemrado::gdal {

namespace {

struct Number {
    OGRRawPoint place;
    std::string text;
};

// What a file has for its parcels.
struct Material {
    OGRMultiLineString boundaries;
    std::vector<Number> numbers;
};

void AddBoundaries(const Batch& batch, int layer, Material& material) {
    for (const LineRecord& line : batch.lines) {
        if (line.layer != layer) continue;
        ForEachStroke(batch, line, [&](size_t first, size_t count) {
            auto stroke = std::make_unique<OGRLineString>();
            stroke->setPoints(static_cast<int>(count), &batch.vertices[first]);
            material.boundaries.addGeometryDirectly(stroke.release());
        });
    }
}

void AddNumbers(const Batch& batch, int layer, Material& material) {
    for (const TextRecord& text : batch.texts) {
        if (text.layer == layer) material.numbers.push_back({text.point, batch.String(text.text)});
    }
}

// Material by file; what was read before a failure, which is reported to GDAL, counts.
std::vector<Material> ReadMaterial(Source& source, const ParcelLayers& layers) {
    std::vector<Material> materials(source.files.size());
    ElementReader reader(source, Content::everything);
    Batch batch;
    while (reader.State() == ReadState::reading) {
        reader.Fill(batch);
        AddBoundaries(batch, layers.boundaries, materials[batch.source]);
        AddNumbers(batch, layers.numbers, materials[batch.source]);
    }
    return materials;
}

// The boundaries cut at their crossings, each piece once; null when there are none or GEOS gives up, which it
// reports.
std::unique_ptr<OGRGeometry> CutBoundaries(const OGRMultiLineString& boundaries) {
    if (boundaries.getNumGeometries() == 0) return nullptr;
    return std::unique_ptr<OGRGeometry>(boundaries.Union(boundaries.getGeometryRef(0)));
}

std::vector<std::unique_ptr<OGRPolygon>> Enclosed(const OGRGeometry& pieces) {
    std::vector<std::unique_ptr<OGRPolygon>> polygons;
    const std::unique_ptr<OGRGeometry> all(pieces.Polygonize());
    if (all == nullptr) return polygons;
    OGRGeometryCollection* collection = all->toGeometryCollection();
    for (const OGRGeometry* part : *collection) polygons.emplace_back(part->toPolygon()->clone());
    return polygons;
}

bool IsInRing(const OGRLinearRing& ring, const OGRRawPoint& point) {
    bool inside = false;
    const int count = ring.getNumPoints();
    for (int i = 0, before = count - 1; i < count; before = i++) {
        const double y1 = ring.getY(i);
        const double y2 = ring.getY(before);
        if ((y1 > point.y) == (y2 > point.y)) continue;
        const double x = (ring.getX(before) - ring.getX(i)) * (point.y - y1) / (y2 - y1) + ring.getX(i);
        if (point.x < x) inside = !inside;
    }
    return inside;
}

bool Holds(const OGRPolygon& polygon, const OGRRawPoint& point) {
    if (!IsInRing(*polygon.getExteriorRing(), point)) return false;
    for (int i = 0; i < polygon.getNumInteriorRings(); ++i) {
        if (IsInRing(*polygon.getInteriorRing(i), point)) return false;
    }
    return true;
}

CPLRectObj BoundsOf(const OGRGeometry& geometry) {
    OGREnvelope envelope;
    geometry.getEnvelope(&envelope);
    return {envelope.MinX, envelope.MinY, envelope.MaxX, envelope.MaxY};
}

double SizeOf(const Parcel& parcel) {
    const CPLRectObj bounds = BoundsOf(*parcel.shape);
    return (bounds.maxx - bounds.minx) * (bounds.maxy - bounds.miny);
}

// Finds the parcel of a point: parcels do not overlap, so the first that holds it is the one. Small ones are
// looked at first; a street's parcel surrounds many others and has many corners.
class ParcelIndex {
  public:
    ParcelIndex(std::vector<Parcel>& indexed, const CPLRectObj& bounds)
        : tree(CPLQuadTreeCreate(&bounds, nullptr)) {
        for (Parcel& parcel : indexed) {
            const CPLRectObj place = BoundsOf(*parcel.shape);
            CPLQuadTreeInsertWithBounds(tree, &parcel, &place);
        }
    }
    ParcelIndex(const ParcelIndex&) = delete;
    ParcelIndex& operator=(const ParcelIndex&) = delete;
    ~ParcelIndex() { CPLQuadTreeDestroy(tree); }

    Parcel* Find(const OGRRawPoint& point) const {
        const CPLRectObj place = {point.x, point.y, point.x, point.y};
        int count = 0;
        void** found = CPLQuadTreeSearch(tree, &place, &count);
        std::vector<Parcel*> parcels;
        for (int i = 0; i < count; ++i) parcels.push_back(static_cast<Parcel*>(found[i]));
        CPLFree(found);
        std::ranges::sort(parcels, {}, [](const Parcel* parcel) { return SizeOf(*parcel); });
        const auto holder =
            std::ranges::find_if(parcels, [&](auto* parcel) { return Holds(*parcel->shape, point); });
        return holder != parcels.end() ? *holder : nullptr;
    }

  private:
    CPLQuadTree* tree;
};

void GiveNumbers(std::vector<Parcel>& parcels, const Material& material, const std::string& name) {
    ParcelIndex index(parcels, BoundsOf(material.boundaries));
    Finding outside;
    for (const Number& number : material.numbers) {
        Parcel* parcel = index.Find(number.place);
        if (parcel == nullptr) {
            outside.Add(number.place, number.text);
        } else if (++parcel->texts == 1) {
            parcel->number = number.text;
        }
    }
    outside.Report(name, "parcel numbers lie outside any parcel");
}

void CheckNumbers(const std::vector<Parcel>& parcels, const std::string& name) {
    Finding none;
    Finding several;
    for (const Parcel& parcel : parcels) {
        OGRPoint corner;
        parcel.shape->getExteriorRing()->getPoint(0, &corner);
        const OGRRawPoint place(corner.getX(), corner.getY());
        if (parcel.texts == 0) none.Add(place, "");
        if (parcel.texts > 1) several.Add(place, parcel.number);
    }
    none.Report(name, "parcels have no number");
    several.Report(name, "parcels have more than one number, the first counts");
}

std::vector<Parcel> BuildOfFile(const Material& material, size_t source, const std::string& name) {
    std::vector<Parcel> parcels;
    const std::unique_ptr<OGRGeometry> pieces = CutBoundaries(material.boundaries);
    if (pieces != nullptr) {
        for (auto& polygon : Enclosed(*pieces)) parcels.push_back({std::move(polygon), "", 0, source});
        ReportOpenBoundaries(*pieces, parcels, name);
    }
    GiveNumbers(parcels, material, name);
    CheckNumbers(parcels, name);
    return parcels;
}

}  // namespace

std::vector<Parcel> BuildParcels(Source& source, const ParcelLayers& layers) {
    std::vector<Parcel> parcels;
    const std::vector<Material> materials = ReadMaterial(source, layers);
    for (size_t file = 0; file < materials.size(); ++file) {
        std::vector<Parcel> built = BuildOfFile(materials[file], file, source.names[file]);
        std::move(built.begin(), built.end(), std::back_inserter(parcels));
    }
    return parcels;
}

}  // namespace vemrado::gdal
