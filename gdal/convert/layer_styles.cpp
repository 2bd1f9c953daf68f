#include "layer_styles.h"

#include <cpl_string.h>

#include <tuple>
#include <utility>

#include "qml_style.h"

namespace vemrado::gdal {

namespace {

OGRLayer* CreateTable(GDALDataset& output) {
    CPLStringList options;
    options.SetNameValue("ASPATIAL_VARIANT", "GPKG_ATTRIBUTES");
    options.SetNameValue("FID", "id");
    OGRLayer* table = output.CreateLayer("layer_styles", nullptr, wkbNone, options.List());
    if (table == nullptr) return nullptr;
    for (const char* name : {"f_table_catalog", "f_table_schema", "f_table_name", "f_geometry_column",
                             "styleName", "styleQML", "styleSLD", "description", "owner", "ui"}) {
        OGRFieldDefn field(name, OFTString);
        if (table->CreateField(&field) != OGRERR_NONE) return nullptr;
    }
    OGRFieldDefn usual("useAsDefault", OFTInteger);
    usual.SetSubType(OFSTBoolean);
    OGRFieldDefn time("update_time", OFTDateTime);
    time.SetDefault("CURRENT_TIMESTAMP");
    if (table->CreateField(&usual) != OGRERR_NONE || table->CreateField(&time) != OGRERR_NONE) return nullptr;
    return table;
}

}  // namespace

bool AddStyle(GDALDataset& geoPackage, OGRLayer& layer, const std::string& qml, const char* description) {
    OGRLayer* table = geoPackage.GetLayerByName("layer_styles");
    if (table == nullptr) table = CreateTable(geoPackage);
    if (table == nullptr) return false;
    OGRFeature row(table->GetLayerDefn());
    row.SetField("f_table_catalog", "");
    row.SetField("f_table_schema", "");
    row.SetField("f_table_name", layer.GetName());
    row.SetField("f_geometry_column", layer.GetGeometryColumn());
    row.SetField("styleName", "map");
    row.SetField("styleQML", qml.c_str());
    row.SetField("description", description);
    row.SetField("useAsDefault", 1);
    return table->CreateFeature(&row) == OGRERR_NONE;
}

LayerStyles::LayerStyles(const std::string& dataDirectory, double mapScale, bool scaleOfFeatures,
                         int axisOrientation)
    : symbology(Symbology::Of(dataDirectory)), look{*symbology, mapScale, scaleOfFeatures, axisOrientation} {}

const std::string& LayerStyles::QmlOf(const std::string& layer) const {
    std::string& document = documents[layer];
    if (!document.empty()) return document;
    if (layer == "lines") return document = LinesQml(look);
    if (layer == "points") return document = PointsQml(look);
    if (layer == "texts") return document = TextsQml(look);
    return document = ParcelsQml(look);
}

// Thousands of outputs have the same styles.
std::shared_ptr<const LayerStyles> LayerStyles::Of(const std::string& dataDirectory, double mapScale,
                                                   bool scaleOfFeatures, int axisOrientation) {
    using Key = std::tuple<std::string, double, bool, int>;
    static std::pair<Key, std::shared_ptr<const LayerStyles>> last;
    const Key key(dataDirectory, mapScale, scaleOfFeatures, axisOrientation);
    if (last.second == nullptr || last.first != key)
        last = {key,
                std::make_shared<LayerStyles>(dataDirectory, mapScale, scaleOfFeatures, axisOrientation)};
    return last.second;
}

bool LayerStyles::AddTo(GDALDataset& geoPackage, const std::vector<OGRLayer*>& layers) const {
    for (OGRLayer* layer : layers) {
        if (!AddStyle(geoPackage, *layer, QmlOf(layer->GetName()), "As the symbology draws it")) return false;
    }
    return true;
}

}  // namespace vemrado::gdal
