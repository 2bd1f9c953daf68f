#include "map_collection.h"

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>

#include "archives/archive_files.h"
#include "archives/map_files.h"
#include "client/system.h"
#include "last_change.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

namespace {

std::vector<CollectedMap> Usable(const std::vector<archives::MapFile>& found) {
    std::vector<CollectedMap> maps;
    for (const archives::MapFile& file : found) {
        if (file.problem.empty()) {
            maps.push_back({file.name, std::nullopt});
        } else {
            CPLError(found.size() == 1 ? CE_Failure : CE_Warning, CPLE_OpenFailed, "%s: %s",
                     file.name.c_str(), file.problem.c_str());
        }
    }
    return maps;
}

GDALDatasetUniquePtr OpenIndex(const std::string& name) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    GDALDatasetUniquePtr index(GDALDataset::Open(name.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    CPLErrorReset();
    return index;
}

// The layer of sheets; null when the file is no index.
OGRLayer* SheetsOf(GDALDataset* index) {
    if (index == nullptr || index->GetLayerCount() == 0) return nullptr;
    OGRLayer* named = index->GetLayerByName("sheets");
    OGRLayer* layer = named != nullptr ? named : index->GetLayer(0);
    const OGRFeatureDefn& definition = *layer->GetLayerDefn();
    const bool fits = definition.GetFieldIndex("source") >= 0 && definition.GetFieldIndex("modified") >= 0;
    return fits ? layer : nullptr;
}

// As it stands in the index, or as seen from the folder that the index lies in.
std::string PathOf(const std::string& source, const std::string& index) {
    const auto opens = [](const std::string& name) { return LastChangeOf(name) != 0; };
    if (opens(source)) return source;
    const std::string beside = CPLFormFilename(CPLGetPath(index.c_str()), source.c_str(), nullptr);
    return opens(beside) ? beside : source;
}

bool StaysAsIndexed(OGRFeature& row, const std::string& file) {
    VSIStatBufL found;
    const bool isPlain = VSIStatL(file.c_str(), &found) == 0;
    const int size = row.GetFieldIndex("size");
    if (isPlain && (size < 0 || static_cast<GIntBig>(found.st_size) != row.GetFieldAsInteger64(size)))
        return false;
    return row.GetFieldAsInteger64("modified") == LastChangeOf(file);
}

// The outline stands for the extent of every layer that has features.
FileTotals TotalsOf(OGRFeature& row) {
    OGREnvelope extent;
    if (row.GetGeometryRef() != nullptr) row.GetGeometryRef()->getEnvelope(&extent);
    FileTotals totals;
    for (const auto& [kind, name] :
         {std::pair(lineLayer, "lines"), {pointLayer, "points"}, {textLayer, "texts"}}) {
        totals[kind].features = row.GetFieldAsInteger64(name);
        if (totals[kind].features > 0) totals[kind].extent = extent;
    }
    return totals;
}

// An index is made with the usual settings; read with others, a map has other counts and another extent.
bool ReadsAsIndexed(OGRLayer& index, const OpenSettings& settings) {
    const OpenSettings usual;
    const OGRSpatialReference* own = index.GetSpatialRef();
    const bool sameSystem =
        settings.reference ? own != nullptr && settings.reference->IsSame(own) != 0 : own == nullptr;
    return sameSystem && settings.axisOrientation == usual.axisOrientation &&
           settings.splitByCode == usual.splitByCode;
}

std::vector<CollectedMap> MapsOfIndex(OGRLayer& index, const std::string& name,
                                      const OpenSettings& settings) {
    const bool reads = ReadsAsIndexed(index, settings);
    std::vector<CollectedMap> maps;
    for (auto& row : index) {
        CollectedMap& map = maps.emplace_back();
        map.file = PathOf(row->GetFieldAsString("source"), name);
        if (reads && StaysAsIndexed(*row, map.file)) map.totals = TotalsOf(*row);
    }
    if (maps.empty()) CPLError(CE_Failure, CPLE_OpenFailed, "%s: the index names no map", name.c_str());
    return maps;
}

}  // namespace

std::vector<CollectedMap> MapsOf(const std::string& collection, const OpenSettings& settings) {
    if (client::KindOfFile(collection) == client::FileKind::directory)
        return Usable(archives::MapsInFolder(collection, true));
    if (archives::IsArchive(collection)) return Usable(archives::MapsInArchive(collection));
    const GDALDatasetUniquePtr index = OpenIndex(collection);
    if (OGRLayer* sheets = SheetsOf(index.get())) return MapsOfIndex(*sheets, collection, settings);
    return {{collection, std::nullopt}};
}

}  // namespace vemrado::gdal
