// What became of the inputs of a conversion, told between processes and in a report file.

#pragma once

#include <string>
#include <vector>

#include "convert/converter.h"

namespace vemrado::tools {

std::string ResultText(const gdal::ConvertResult& result);
gdal::ConvertResult ResultOf(const std::string& text);

// A row of the report; the name is UTF-8.
struct ReportRow {
    std::string source;
    gdal::SheetReport sheet;
};

// Writes the rows as JSON or CSV, as the file's ending says; ofParcels: with what is wrong with them. Throws
// Failure when that is neither (see CheckReportName) or the file cannot be written.
void WriteReport(const std::string& file, const std::vector<ReportRow>& rows, bool ofParcels);
void CheckReportName(const std::string& file);

}  // namespace vemrado::tools
