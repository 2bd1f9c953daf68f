#include "driver.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cstdlib>

#include "client/axis_orientation.h"
#include "client/foreign_file.h"
#include "client/text_encoding.h"
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
  <Option name='PARCELS' type='boolean' default='NO' description='Add the layer parcels: polygons that the boundary lines enclose, with the parcel numbers that lie inside'/>
  <Option name='PARCEL_LAYER' type='int' default='1' description='Layer of the file whose lines bound parcels'/>
  <Option name='NUMBER_LAYER' type='int' default='2' description='Layer of the file whose texts are parcel numbers'/>
  <Option name='SOURCE_FIELD' type='boolean' default='NO' description='Add to every layer a field source with the name of the file'/>
</OpenOptionList>)";

bool Identify(GDALOpenInfo* info) {
    if (info->fpL == nullptr || info->nHeaderBytes <= 0 || info->pabyHeader[0] == '\0') return false;
    const std::string_view start(reinterpret_cast<const char*>(info->pabyHeader),
                                 static_cast<size_t>(info->nHeaderBytes));
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
    return VkmDataset::Open({info->pszFilename}, settings).release();
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
    }
    settings.parcels = CPLFetchBool(options, "PARCELS", false);
    settings.parcelLayers.boundaries = std::atoi(CSLFetchNameValueDef(options, "PARCEL_LAYER", "1"));
    settings.parcelLayers.numbers = std::atoi(CSLFetchNameValueDef(options, "NUMBER_LAYER", "2"));
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
    driver->SetMetadataItem(GDAL_DCAP_VIRTUALIO, "YES");
    driver->SetMetadataItem(GDAL_DCAP_FEATURE_STYLES, "YES");
    driver->pfnIdentify = OnIdentify;
    driver->pfnOpen = OnOpen;
    GetGDALDriverManager()->RegisterDriver(driver.release());
}

}  // namespace vemrado::gdal
