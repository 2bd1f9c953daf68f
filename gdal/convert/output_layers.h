// The layers of an output, in one file or database or in a file each, and features on their way into them.

#pragma once

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "output_format.h"
#include "vkm_features.h"

namespace vemrado::gdal {

// The first three are those of a map, numbered as LayerKind.
enum OutputKind : size_t { outputLines, outputPoints, outputTexts, outputParcels, outputSheets, outputKinds };

struct OutputSettings {
    OutputFormat format;
    std::string schema;                                    // of a PostgreSQL database
    bool keepExisting = false;                             // layers that are there are added to
    std::vector<double> box;                               // empty: no limit
    const OGRSpatialReference* target = nullptr;           // null: coordinates stay
    std::function<std::string(const char* layer)> pathOf;  // of a layer's file, where each has one
};

class OutputLayers {
  public:
    explicit OutputLayers(OutputSettings settings);
    OutputLayers(const OutputLayers&) = delete;
    OutputLayers& operator=(const OutputLayers&) = delete;
    ~OutputLayers();

    // Makes the file, or opens the file or database that is there. False: reported to GDAL.
    bool Create(const std::string& path);
    bool OpenExisting(const std::string& path);

    // Makes the layer of features of the definition, or takes the one that is there.
    bool Add(OutputKind kind, OGRFeatureDefn& definition, OGRwkbGeometryType type);
    // Whether a database has a layer of that name.
    bool IsThere(const char* layer);
    bool Has(OutputKind kind) const { return places[kind].layer != nullptr; }
    OGRLayer* Layer(OutputKind kind) const { return places[kind].layer; }
    // Whether the layer was there before.
    bool WasThere(OutputKind kind) const { return places[kind].existed; }

    // Writes a feature of the definition that the layer was added with; it is used up. An identifier is kept
    // where it is given.
    bool Write(OutputKind kind, OGRFeature& feature);

    // Highest identifier of the layer's features, 0 without any.
    GIntBig LastIdentifier(OutputKind kind);

    // What the definition says of a field; empty: nothing.
    std::string CommentOf(OutputKind kind, const char* field) const;

    bool IsDatabase() const { return isDatabase; }
    bool IsPostgres() const { return isPostgres; }
    bool IsGeoPackage() const { return isGeoPackage; }
    // Whether coordinates are written as they are, and all of them.
    bool KeepsPlaces() const { return settings.target == nullptr && !limits.IsInit(); }
    // Whether features of one layer may follow those of another.
    bool TakesAnyOrder() const;
    // Of the output, or of its first file.
    GDALDataset& Dataset() const { return *datasets.front(); }

    // Runs SQL in a database. False: reported to GDAL.
    bool Run(const std::string& sql);
    // The first column of the first row; empty: none.
    std::string Ask(const std::string& sql);
    // The layer's table as SQL names it.
    std::string Table(const char* layer) const;
    // The text as an SQL literal.
    static std::string Quoted(const std::string& text);

    bool Begin();
    bool Commit();
    void Rollback();
    // Closes everything; false when something could not be written.
    bool Close();

  private:
    struct Place {
        OGRLayer* layer = nullptr;
        OGRFeatureDefn* definition = nullptr;
        std::vector<int> fields;  // of the output by those of the definition
        OGRwkbGeometryType type = wkbUnknown;
        OGRCoordinateTransformation* transformation = nullptr;
        bool existed = false;
    };

    GDALDataset* DatasetFor(const char* layer);
    OGRLayer* Find(const char* layer);
    OGRLayer* Make(GDALDataset& dataset, OGRFeatureDefn& definition, OGRwkbGeometryType type);
    bool MapFields(Place& place, OGRFeatureDefn& definition);
    bool Fit(const Place& place, OGRFeature& feature) const;
    bool WriteMerged(const Place& place, OGRFeature& feature);

    OutputSettings settings;
    bool isDatabase;
    bool isPostgres;
    bool isGeoPackage;
    bool inTransaction = false;
    std::vector<GDALDatasetUniquePtr> datasets;
    std::array<Place, outputKinds> places;
    std::vector<std::unique_ptr<OGRCoordinateTransformation>> transformations;
    OGRLayer* merged = nullptr;
    OGREnvelope limits;
};

}  // namespace vemrado::gdal
