#include "converter.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <optional>

#include "collection.h"
#include "diagnostics.h"
#include "driver.h"
#include "output_format.h"
#include "virtual_files.h"

namespace vemrado::gdal {

namespace {

std::string FormatName(const ConvertRequest& request) {
    if (!request.format.empty()) return request.format;
    if (request.output.starts_with("PG:")) return "PostgreSQL";
    return CPLGetExtension(request.output.c_str());
}

// GDAL itself passes over options that a driver does not have.
bool IsOpenOption(const std::string& option) {
    const char* list =
        GetGDALDriverManager()->GetDriverByName("VKM")->GetMetadataItem(GDAL_DMD_OPENOPTIONLIST);
    const CPLString name = CPLString(option.substr(0, option.find('='))).toupper();
    return CPLString(list).find("<Option name='" + name + "'") != std::string::npos;
}

std::optional<Problem> Convert(ConvertRequest request, const ConvertReports& reports,
                               std::vector<SheetReport>& sheets) {
    Diagnostics diagnostics(reports.warn);
    const std::string name = FormatName(request);
    OutputFormat format = FindFormat(name);
    if (format.driver == nullptr)
        return Problem{ConvertOutcome::badRequest, request.output + ": GDAL writes no format '" + name + "'"};
    if (request.output == standardOutputName) {
        if (!CanStream(format))
            return Problem{ConvertOutcome::badRequest,
                           "--output: the format '" + name +
                               "' needs a file; GeoJSONSeq, GeoJSON and CSV go to standard output"};
        format.layout = Layout::joined;
    }
    if (!request.schema.empty() && !EQUAL(format.driver->GetDescription(), "PostgreSQL"))
        return Problem{ConvertOutcome::badRequest, "--schema needs an output in PostgreSQL (PG:...)"};
    CPLStringList options;
    for (const std::string& option : request.openOptions) {
        if (!IsOpenOption(option))
            return Problem{ConvertOutcome::badRequest,
                           "--open-option: the driver has no option '" + option + "'"};
        options.AddString(option.c_str());
    }
    OpenSettings settings;
    if (!ReadOpenOptions(options.List(), settings))
        return Problem{ConvertOutcome::badRequest, diagnostics.TakeFailure()};
    // The format's coordinates are WGS 84; its driver would transform by the names of fields, of which joined
    // layers may have two alike.
    if (format.layout == Layout::joined && EQUAL(format.driver->GetDescription(), "GeoJSONSeq") &&
        settings.reference)
        request.targetReference = "OGC:CRS84";
    // Many rows at a time are much faster than one by one.
    const CPLConfigOptionSetter bulkLoad("PG_USE_COPY", "YES", false);
    return Collection(request, settings, format, diagnostics, reports, sheets).Run();
}

}  // namespace

}  // namespace vemrado::gdal

void VkmConvert(const vemrado::gdal::ConvertRequest& request, const vemrado::gdal::ConvertReports& reports,
                vemrado::gdal::ConvertResult& result) {
    vemrado::gdal::RegisterDriver();
    GDALAllRegister();
    if (const auto problem = vemrado::gdal::Convert(request, reports, result.sheets)) {
        result.outcome = problem->outcome;
        result.problem = problem->text;
    }
}

const FrameworkFileProvider* VkmVirtualFiles() {
    return &vemrado::gdal::virtualFiles;
}
