#include "output_layers.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_geometry.h>

#include <algorithm>
#include <utility>

#include "checked_files.h"

namespace vemrado::gdal {

namespace {

bool Clean() {
    return CPLGetLastErrorType() < CE_Failure;
}

// The field of that name and type; -1: none.
int FindField(OGRFeatureDefn& made, const OGRFieldDefn& wanted) {
    for (int i = 0; i < made.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *made.GetFieldDefn(i);
        if (EQUAL(field.GetNameRef(), wanted.GetNameRef()) && field.GetType() == wanted.GetType()) return i;
    }
    return -1;
}

}  // namespace

OutputLayers::OutputLayers(OutputSettings chosen) : settings(std::move(chosen)) {
    const char* driver = settings.format.driver->GetDescription();
    isGeoPackage = EQUAL(driver, "GPKG");
    isPostgres = EQUAL(driver, "PostgreSQL");
    isDatabase = isGeoPackage || isPostgres || EQUAL(driver, "SQLite");
    if (settings.box.size() != 4) return;
    limits.Merge(settings.box[0], settings.box[1]);
    limits.Merge(settings.box[2], settings.box[3]);
}

OutputLayers::~OutputLayers() {
    if (inTransaction) Rollback();
}

bool OutputLayers::Create(const std::string& path) {
    // Databases keep files of their own beside it and look at every write themselves.
    // Formats know standard output by its name.
    const bool isPlain = isDatabase || settings.format.layout == Layout::joined;
    const std::string name = isPlain ? path : CheckedPath(path);
    GDALDatasetUniquePtr made(settings.format.driver->Create(name.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (made == nullptr) return false;
    datasets.push_back(std::move(made));
    return true;
}

bool OutputLayers::OpenExisting(const std::string& path) {
    const char* drivers[] = {settings.format.driver->GetDescription(), nullptr};
    GDALDatasetUniquePtr opened(GDALDataset::Open(
        path.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE | GDAL_OF_VERBOSE_ERROR, drivers, nullptr, nullptr));
    if (opened == nullptr) return false;
    datasets.push_back(std::move(opened));
    return true;
}

GDALDataset* OutputLayers::DatasetFor(const char* layer) {
    if (settings.format.layout != Layout::separate) return datasets.front().get();
    return Create(settings.pathOf(layer)) ? datasets.back().get() : nullptr;
}

OGRLayer* OutputLayers::Find(const char* layer) {
    const std::string name = isPostgres && !settings.schema.empty() ? settings.schema + "." + layer : layer;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    OGRLayer* found = Dataset().GetLayerByName(name.c_str());
    CPLPopErrorHandler();
    CPLErrorReset();
    return found;
}

bool OutputLayers::IsThere(const char* layer) {
    return isDatabase && Find(layer) != nullptr;
}

OGRLayer* OutputLayers::Make(GDALDataset& dataset, OGRFeatureDefn& definition, OGRwkbGeometryType type) {
    CPLStringList options;
    for (const char* option : LayerOptions(*settings.format.driver)) options.AddString(option);
    if (isPostgres && !settings.schema.empty()) options.SetNameValue("SCHEMA", settings.schema.c_str());
    OGRGeomFieldDefn* place = definition.GetGeomFieldCount() > 0 ? definition.GetGeomFieldDefn(0) : nullptr;
    const OGRSpatialReference* own = place != nullptr ? place->GetSpatialRef() : nullptr;
    std::unique_ptr<OGRSpatialReference> reference;
    if (own != nullptr) reference.reset((settings.target != nullptr ? settings.target : own)->Clone());
    return dataset.CreateLayer(definition.GetName(), reference.get(), type, options.List());
}

bool OutputLayers::MapFields(Place& place, OGRFeatureDefn& definition) {
    OGRFeatureDefn& made = *place.layer->GetLayerDefn();
    place.fields.assign(static_cast<size_t>(definition.GetFieldCount()), -1);
    const bool joined = settings.format.layout == Layout::joined;
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        int& target = place.fields[static_cast<size_t>(i)];
        const OGRFieldDefn& field = *definition.GetFieldDefn(i);
        if (place.existed) {
            target = made.GetFieldIndex(field.GetNameRef());
            if (target >= 0) continue;
        }
        OGRFieldDefn wanted(&field);
        wanted.SetType(FieldTypeFor(*settings.format.driver, field.GetType()));
        if (joined && (target = FindField(made, wanted)) >= 0) continue;
        const int before = made.GetFieldCount();
        if (place.layer->CreateField(&wanted) != OGRERR_NONE) return false;
        // Of fields of one name, which two kinds of features may have with two types, a layer adds the first.
        if (joined && made.GetFieldCount() == before) made.AddFieldDefn(&wanted);
        // Formats with fields of their own may take one of them for it.
        target = made.GetFieldCount() > before ? before : made.GetFieldIndex(field.GetNameRef());
    }
    return true;
}

bool OutputLayers::Add(OutputKind kind, OGRFeatureDefn& definition, OGRwkbGeometryType type) {
    Place& place = places[kind];
    place.definition = &definition;
    place.type = type;
    if (settings.format.layout == Layout::merged) {
        if (merged == nullptr) merged = Dataset().CreateLayer("entities", nullptr, wkbUnknown, nullptr);
        place.layer = merged;
    } else if (settings.format.layout == Layout::joined) {
        if (merged == nullptr) merged = Make(Dataset(), definition, wkbUnknown);
        place.layer = merged;
        if (merged == nullptr || !MapFields(place, definition)) return false;
    } else {
        if (settings.keepExisting) place.layer = Find(definition.GetName());
        place.existed = place.layer != nullptr;
        if (place.existed) {
            place.type = place.layer->GetGeomType();
        } else {
            GDALDataset* dataset = DatasetFor(definition.GetName());
            if (dataset == nullptr) return false;
            place.layer = Make(*dataset, definition, type);
        }
        if (place.layer == nullptr || !MapFields(place, definition)) return false;
    }
    if (place.layer == nullptr) return false;
    const bool placed = definition.GetGeomFieldCount() > 0;
    const OGRSpatialReference* own = placed ? definition.GetGeomFieldDefn(0)->GetSpatialRef() : nullptr;
    if (settings.target == nullptr || own == nullptr) return true;
    transformations.emplace_back(OGRCreateCoordinateTransformation(own, settings.target));
    place.transformation = transformations.back().get();
    return place.transformation != nullptr;
}

// Makes the geometry what the layer takes; false when it cannot be transformed.
bool OutputLayers::Fit(const Place& place, OGRFeature& feature) const {
    OGRGeometry* geometry = feature.GetGeometryRef();
    if (geometry == nullptr) return true;
    if (place.transformation != nullptr && geometry->transform(place.transformation) != OGRERR_NONE)
        return false;
    if (wkbFlatten(place.type) == wkbMultiLineString &&
        wkbFlatten(geometry->getGeometryType()) == wkbLineString)
        feature.SetGeometryDirectly(OGRGeometryFactory::forceToMultiLineString(feature.StealGeometry()));
    return true;
}

// Drawings have one layer of everything; what layer of the map a feature is from stands in a field.
bool OutputLayers::WriteMerged(const Place& place, OGRFeature& feature) {
    OGRFeature copy(place.layer->GetLayerDefn());
    copy.SetGeometryDirectly(feature.StealGeometry());
    copy.SetStyleString(feature.GetStyleString());
    const int from = feature.GetFieldIndex("layer");
    const int to = copy.GetFieldIndex("Layer");
    if (from >= 0 && to >= 0) copy.SetField(to, feature.GetFieldAsString(from));
    return place.layer->CreateFeature(&copy) == OGRERR_NONE;
}

bool OutputLayers::Write(OutputKind kind, OGRFeature& feature) {
    const Place& place = places[kind];
    if (limits.IsInit() && kind != outputSheets) {
        OGREnvelope own;
        if (feature.GetGeometryRef() != nullptr) feature.GetGeometryRef()->getEnvelope(&own);
        if (!own.IsInit() || own.Intersects(limits) == 0) return true;
    }
    if (!Fit(place, feature) || !FailedWrite().empty()) return false;
    if (settings.format.layout == Layout::merged) return WriteMerged(place, feature);
    OGRFeature copy(place.layer->GetLayerDefn());
    const GIntBig identifier = feature.GetFID();
    std::unique_ptr<OGRGeometry> geometry(feature.StealGeometry());
    if (copy.SetFieldsFrom(&feature, place.fields.data(), TRUE) != OGRERR_NONE) return false;
    copy.SetStyleString(feature.GetStyleString());
    if (geometry != nullptr && copy.GetGeomFieldCount() > 0) {
        geometry->assignSpatialReference(copy.GetGeomFieldDefnRef(0)->GetSpatialRef());
        copy.SetGeometryDirectly(geometry.release());
    }
    copy.SetFID(identifier);
    return place.layer->CreateFeature(&copy) == OGRERR_NONE;
}

GIntBig OutputLayers::LastIdentifier(OutputKind kind) {
    if (!isDatabase || !places[kind].existed) return 0;
    const std::string column = places[kind].layer->GetFIDColumn();
    if (column.empty()) return 0;
    return CPLAtoGIntBig(
        Ask("SELECT max(\"" + column + "\") FROM " + Table(places[kind].layer->GetLayerDefn()->GetName()))
            .c_str());
}

std::string OutputLayers::CommentOf(OutputKind kind, const char* field) const {
    OGRFeatureDefn* definition = places[kind].definition;
    const int index = definition != nullptr ? definition->GetFieldIndex(field) : -1;
    return index >= 0 ? definition->GetFieldDefn(index)->GetAlternativeNameRef() : "";
}

bool OutputLayers::TakesAnyOrder() const {
    if (settings.format.layout != Layout::container) return true;
    return Dataset().TestCapability(ODsCRandomLayerWrite) != FALSE;
}

bool OutputLayers::Run(const std::string& sql) {
    CPLErrorReset();
    OGRLayer* result = Dataset().ExecuteSQL(sql.c_str(), nullptr, nullptr);
    if (result != nullptr) Dataset().ReleaseResultSet(result);
    return Clean();
}

std::string OutputLayers::Ask(const std::string& sql) {
    OGRLayer* result = Dataset().ExecuteSQL(sql.c_str(), nullptr, nullptr);
    if (result == nullptr) return {};
    std::string answer;
    if (const OGRFeatureUniquePtr row{result->GetNextFeature()}; row != nullptr && row->GetFieldCount() > 0)
        answer = row->GetFieldAsString(0);
    Dataset().ReleaseResultSet(result);
    return answer;
}

std::string OutputLayers::Table(const char* layer) const {
    std::string name = layer;
    const size_t dot = name.rfind('.');
    if (isPostgres && dot != std::string::npos) name.erase(0, dot + 1);
    const std::string table = "\"" + name + "\"";
    return isPostgres && !settings.schema.empty() ? "\"" + settings.schema + "\"." + table : table;
}

std::string OutputLayers::Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char letter : text) quoted.append(letter == '\'' ? 2 : 1, letter);
    return quoted + "'";
}

bool OutputLayers::Begin() {
    if (!isDatabase) return true;
    inTransaction = Dataset().StartTransaction() == OGRERR_NONE;
    return inTransaction;
}

bool OutputLayers::Commit() {
    if (!inTransaction) return true;
    inTransaction = false;
    return Dataset().CommitTransaction() == OGRERR_NONE;
}

void OutputLayers::Rollback() {
    inTransaction = false;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    Dataset().RollbackTransaction();
    CPLPopErrorHandler();
}

bool OutputLayers::Close() {
    CPLErrorReset();
    bool clean = true;
    for (GDALDatasetUniquePtr& dataset : datasets) {
        dataset->FlushCache(false);
        clean = clean && Clean();
        dataset.reset();
        clean = clean && Clean();
    }
    datasets.clear();
    places = {};
    return clean;
}

}  // namespace vemrado::gdal
