#include "driver.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <charconv>
#include <cstring>

#include "client/axis_orientation.h"
#include "client/foreign_file.h"
#include "client/text_encoding.h"
#include "map_collection.h"
#include "sample_symbology.h"
#include "vkm_dataset.h"

namespace vemrado::gdal {

namespace {

constexpr const char* openOptions = R"(<OpenOptionList>
  <Option name='ENCODING' type='string-select' default='windows-1250' description='Encoding of the texts in the file; auto guesses it'>
    <Value>windows-1250</Value>
    <Value>cp852</Value>
    <Value>iso-8859-2</Value>
    <Value>utf-8</Value>
    <Value>auto</Value>
  </Option>
  <Option name='ORIENTATION' type='string' default='-y,-x' description="What a point (x, y) of the file, x to the south and y to the west, becomes: x,y x,-y -x,y -x,-y y,x -y,x y,-x or -y,-x, or its code 1 2 4 8 16 32 64 128. The default gives east and north"/>
  <Option name='SYMBOLOGY' type='string' description='Directory that holds VKMSym with the symbology tables for the styles of features; NO for none. By default the sample symbology, where it is installed'/>
  <Option name='SRS' type='string' default='EPSG:5514' description='Reference system of the coordinates; NO for none. The default stands for the default orientation only'/>
  <Option name='SPLIT_BY_CODE' type='boolean' default='YES' description='Make a line whose code changes along it one feature for each code; NO keeps it whole, with its first code'/>
  <Option name='PARCELS' type='boolean' default='NO' description='Add the layer parcels: polygons that the boundary lines enclose, with the parcel numbers that lie inside'/>
  <Option name='PARCEL_LAYER' type='int' default='1' description='Layer of the file whose lines bound parcels'/>
  <Option name='NUMBER_LAYER' type='int' default='2' description='Layer of the file whose texts are parcel numbers'/>
  <Option name='ANGLE_UNIT' type='string-select' default='gon' description='Unit of the rotations (U) in the file; features have them in gons'>
    <Value>gon</Value>
    <Value>deg</Value>
    <Value>rad</Value>
  </Option>
  <Option name='SOURCE_FIELD' type='boolean' default='NO' description='Add to every layer a field source with the name of the file'/>
</OpenOptionList>)";

constexpr const char* collectionPrefix = "VKM:";

bool IsCollection(const GDALOpenInfo& info) {
    return STARTS_WITH_CI(info.pszFilename, collectionPrefix);
}

// Whoever names the driver (-if VKM) wants it for everything that the module can make something of.
bool IsForced(const GDALOpenInfo& info) {
    return info.papszAllowedDrivers != nullptr && CSLCount(info.papszAllowedDrivers) == 1 &&
           EQUAL(info.papszAllowedDrivers[0], "VKM");
}

bool Identify(GDALOpenInfo* info) {
    if (IsCollection(*info)) return true;
    if (info->fpL == nullptr || info->nHeaderBytes <= 0 || info->pabyHeader[0] == '\0') return false;
    std::string_view start(reinterpret_cast<const char*>(info->pabyHeader),
                           static_cast<size_t>(info->nHeaderBytes));
    if (IsForced(*info) && client::ForeignKind(start).empty()) return true;
    if (start.starts_with(client::byteOrderMark)) start.remove_prefix(client::byteOrderMark.size());
    return client::IsCertainlyVkm(start, EQUAL(CPLGetExtension(info->pszFilename), "vkm"));
}

int OnIdentify(GDALOpenInfo* info) {
    return Identify(info) ? TRUE : FALSE;
}

// GDAL itself only says that no driver takes the file.
void SayWhatElseItIs(const GDALOpenInfo& info) {
    const bool namedVkm = EQUAL(CPLGetExtension(info.pszFilename), "vkm");
    if (!namedVkm || info.nHeaderBytes <= 0 || (info.nOpenFlags & GDAL_OF_VERBOSE_ERROR) == 0) return;
    const std::string_view start(reinterpret_cast<const char*>(info.pabyHeader),
                                 static_cast<size_t>(info.nHeaderBytes));
    const std::string_view kind = client::ForeignKind(start);
    if (!kind.empty())
        CPLError(CE_Failure, CPLE_OpenFailed, "%s",
                 client::ForeignFileMessage(info.pszFilename, kind).c_str());
}

GDALDataset* OpenCollection(const GDALOpenInfo& info, OpenSettings& settings) {
    const std::string name = info.pszFilename + std::strlen(collectionPrefix);
    const std::vector<CollectedMap> maps = MapsOf(name, settings);
    if (maps.empty()) return nullptr;
    if (maps.front().file == name) return VkmDataset::Open(name, settings).release();
    settings.withSourceField = CPLFetchBool(info.papszOpenOptions, "SOURCE_FIELD", true);
    return VkmDataset::OpenCollection(maps, settings).release();
}

GDALDataset* OnOpen(GDALOpenInfo* info) {
    if (!Identify(info)) {
        SayWhatElseItIs(*info);
        return nullptr;
    }
    if (info->eAccess == GA_Update) {
        // Desktop programs try this first and then open for reading.
        if ((info->nOpenFlags & GDAL_OF_VERBOSE_ERROR) != 0)
            CPLError(CE_Failure, CPLE_NotSupported, "%s: the VKM driver reads only", info->pszFilename);
        return nullptr;
    }
    OpenSettings settings;
    if (!ReadOpenOptions(info->papszOpenOptions, settings)) return nullptr;
    if (IsCollection(*info)) return OpenCollection(*info, settings);
    return VkmDataset::Open(info->pszFilename, settings).release();
}

bool IsNo(const char* value) {
    return value[0] == '\0' || EQUAL(value, "NO") || EQUAL(value, "NONE");
}

// The directory that holds VKMSym, also when people name VKMSym itself.
std::string HolderOfTables(const char* directory) {
    return EQUAL(CPLGetFilename(directory), "VKMSym") ? CPLGetPath(directory) : directory;
}

bool ReadReference(const char* name, OpenSettings& settings) {
    settings.reference.reset();
    if (IsNo(name)) return true;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const bool known = settings.reference.emplace().SetFromUserInput(name) == OGRERR_NONE;
    CPLPopErrorHandler();
    if (!known) {
        CPLError(CE_Failure, CPLE_IllegalArg, "SRS: '%s' names no reference system", name);
        return false;
    }
    settings.reference->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return true;
}

bool ReadLayerNumber(const char* const* options, const char* name, int& number) {
    const char* text = CSLFetchNameValue(options, name);
    if (text == nullptr) return true;
    const char* end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, number);
    if (error == std::errc() && stop == end && stop != text) return true;
    CPLError(CE_Failure, CPLE_IllegalArg, "%s: '%s' is no layer number", name, text);
    return false;
}

bool ReadAngleUnit(const std::string& unit, OpenSettings& settings) {
    if (unit == "gon") return true;
    settings.angleUnit = unit == "deg" ? map::AngleUnit::degree : map::AngleUnit::radian;
    if (unit == "deg" || unit == "rad") return true;
    CPLError(CE_Failure, CPLE_IllegalArg, "ANGLE_UNIT: '%s' is none of gon, deg and rad", unit.c_str());
    return false;
}

}  // namespace

bool ReadOpenOptions(const char* const* options, OpenSettings& settings) {
    const std::string encoding = CSLFetchNameValueDef(options, "ENCODING", "windows-1250");
    settings.guessEncoding = EQUAL(encoding.c_str(), "auto");
    const std::optional<client::Encoding> found =
        client::FindEncoding(settings.guessEncoding ? "windows-1250" : encoding);
    if (!found) {
        CPLError(CE_Failure, CPLE_IllegalArg, "ENCODING: '%s' is no encoding", encoding.c_str());
        return false;
    }
    settings.encoding = *found;

    const std::string orientation = CSLFetchNameValueDef(options, "ORIENTATION", "-y,-x");
    const std::optional<int> code = client::FindAxisOrientation(orientation);
    if (!code) {
        CPLError(CE_Failure, CPLE_IllegalArg, "ORIENTATION: '%s' is no axis orientation",
                 orientation.c_str());
        return false;
    }
    settings.axisOrientation = *code;
    constexpr int eastAndNorth = 128;
    const char* usualReference = settings.axisOrientation == eastAndNorth ? "EPSG:5514" : "NO";
    if (!ReadReference(CSLFetchNameValueDef(options, "SRS", usualReference), settings)) return false;

    const char* symbology = CSLFetchNameValue(options, "SYMBOLOGY");
    if (symbology == nullptr) {
        settings.dataDirectory = SampleSymbology();
    } else {
        settings.dataDirectory = IsNo(symbology) ? "" : HolderOfTables(symbology);
        VSIStatBufL status;
        if (!settings.dataDirectory.empty() && VSIStatL(settings.dataDirectory.c_str(), &status) != 0) {
            CPLError(CE_Failure, CPLE_IllegalArg, "SYMBOLOGY: there is no directory '%s'", symbology);
            return false;
        }
    }
    settings.splitByCode = CPLFetchBool(options, "SPLIT_BY_CODE", true);
    settings.parcels = CPLFetchBool(options, "PARCELS", false);
    if (!ReadLayerNumber(options, "PARCEL_LAYER", settings.parcelLayers.boundaries) ||
        !ReadLayerNumber(options, "NUMBER_LAYER", settings.parcelLayers.numbers) ||
        !ReadAngleUnit(CSLFetchNameValueDef(options, "ANGLE_UNIT", "gon"), settings))
        return false;
    settings.withSourceField = CPLFetchBool(options, "SOURCE_FIELD", false);
    return true;
}

void RegisterDriver() {
    if (!GDAL_CHECK_VERSION("VKM driver") || GDALGetDriverByName("VKM") != nullptr) return;
    auto driver = std::make_unique<GDALDriver>();
    driver->SetDescription("VKM");
    driver->SetMetadataItem(GDAL_DCAP_VECTOR, "YES");
    driver->SetMetadataItem(GDAL_DMD_LONGNAME, "VKM, text exchange format of digital cadastral maps");
    driver->SetMetadataItem(GDAL_DMD_EXTENSION, "vkm");
    driver->SetMetadataItem(GDAL_DMD_EXTENSIONS, "vkm");
    driver->SetMetadataItem(GDAL_DMD_OPENOPTIONLIST, openOptions);
    driver->SetMetadataItem(GDAL_DMD_CONNECTION_PREFIX, collectionPrefix);
    driver->SetMetadataItem(GDAL_DMD_SUPPORTED_SQL_DIALECTS, "OGRSQL SQLITE");
    driver->SetMetadataItem(GDAL_DMD_HELPTOPIC, "docs/gis.md");
    driver->SetMetadataItem(GDAL_DCAP_MULTIPLE_VECTOR_LAYERS, "YES");
    driver->SetMetadataItem(GDAL_DCAP_VIRTUALIO, "YES");
    driver->SetMetadataItem(GDAL_DCAP_FEATURE_STYLES, "YES");
    driver->pfnIdentify = OnIdentify;
    driver->pfnOpen = OnOpen;
    GetGDALDriverManager()->RegisterDriver(driver.release());
}

}  // namespace vemrado::gdal
