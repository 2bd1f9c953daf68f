#include "output_format.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_feature.h>

#include <algorithm>
#include <string_view>

namespace vemrado::gdal {

namespace {

constexpr std::string_view containers[] = {"GPKG", "SQLite", "GML", "KML",    "LIBKML",
                                           "ODS",  "XLSX",   "PDF", "PGDUMP", "PostgreSQL"};
constexpr std::string_view merging[] = {"DXF"};
constexpr std::string_view streaming[] = {"GeoJSONSeq", "GeoJSON", "CSV"};

struct FieldType {
    OGRFieldType type;
    OGRFieldType substitute;
};
constexpr FieldType substitutes[] = {{OFTStringList, OFTString},
                                     {OFTIntegerList, OFTString},
                                     {OFTRealList, OFTString},
                                     {OFTInteger64, OFTReal}};

struct LayerOption {
    const char* driver;
    const char* option;
};
constexpr LayerOption layerOptions[] = {{"CSV", "GEOMETRY=AS_WKT"},
                                        {"ESRI Shapefile", "ENCODING=UTF-8"},
                                        {"MapInfo File", "ENCODING=CP1250"},
                                        {"PostgreSQL", "GEOMETRY_NAME=geom"},
                                        {"PostgreSQL", "FID=id"},
                                        {"PostgreSQL", "LAUNDER=NO"}};

bool Contains(const auto& names, const char* name) {
    return std::ranges::find(names, name) != std::end(names);
}

bool Writes(GDALDriver& driver) {
    return driver.GetMetadataItem(GDAL_DCAP_VECTOR) != nullptr &&
           driver.GetMetadataItem(GDAL_DCAP_CREATE) != nullptr;
}

bool HasExtension(GDALDriver& driver, const char* extension) {
    const char* all = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    const CPLStringList extensions(CSLTokenizeString2(all != nullptr ? all : "", " ", 0));
    return extensions.FindString(extension) >= 0;
}

GDALDriver* DriverOfExtension(const char* extension) {
    GDALDriverManager& manager = *GetGDALDriverManager();
    // The other driver of this extension takes a hundred times as long.
    if (EQUAL(extension, "kml") && manager.GetDriverByName("KML") != nullptr)
        return manager.GetDriverByName("KML");
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver* driver = manager.GetDriver(i);
        if (Writes(*driver) && HasExtension(*driver, extension)) return driver;
    }
    return nullptr;
}

}  // namespace

OutputFormat FindFormat(const std::string& name) {
    OutputFormat format = {nullptr, Layout::separate, CPLString(name).tolower()};
    if (name.empty()) return format;
    format.driver = DriverOfExtension(name.c_str());
    GDALDriver* named = GetGDALDriverManager()->GetDriverByName(name.c_str());
    if (format.driver == nullptr && named != nullptr && Writes(*named)) {
        const char* extension = named->GetMetadataItem(GDAL_DMD_EXTENSION);
        format.driver = named;
        format.extension = extension != nullptr ? extension : "";
    }
    if (format.driver == nullptr) return format;
    const char* driverName = format.driver->GetDescription();
    if (Contains(containers, driverName)) format.layout = Layout::container;
    if (Contains(merging, driverName)) format.layout = Layout::merged;
    return format;
}

bool CanStream(const OutputFormat& format) {
    return Contains(streaming, format.driver->GetDescription());
}

bool IsTable(const OutputFormat& format) {
    return EQUAL(format.driver->GetDescription(), "CSV");
}

OGRFieldType FieldTypeFor(GDALDriver& driver, OGRFieldType wanted) {
    const char* types = driver.GetMetadataItem(GDAL_DMD_CREATIONFIELDDATATYPES);
    if (types == nullptr) return wanted;
    const CPLStringList known(CSLTokenizeString2(types, " ", 0));
    for (const auto& [type, substitute] : substitutes) {
        if (type == wanted && known.FindString(OGRFieldDefn::GetFieldTypeName(type)) < 0) return substitute;
    }
    return wanted;
}

std::vector<const char*> LayerOptions(GDALDriver& driver) {
    std::vector<const char*> options;
    for (const auto& [name, option] : layerOptions) {
        if (EQUAL(driver.GetDescription(), name)) options.push_back(option);
    }
    return options;
}

}  // namespace vemrado::gdal
