#include "convert_report.h"

#include <nlohmann/json.hpp>

#include "client/atomic_output.h"
#include "client/system.h"
#include "failure.h"

namespace vemrado::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* parcelFaults[] = {"parcelsWithoutNumber", "freeEnds"};

// What the rows of a report have beside their source.
Json SheetJson(const gdal::SheetReport& sheet) {
    Json json;
    json["made"] = sheet.made;
    json["complete"] = sheet.complete;
    json["lines"] = sheet.lines;
    json["points"] = sheet.points;
    json["texts"] = sheet.texts;
    json["parcels"] = sheet.parcels.parcels;
    json["seconds"] = sheet.seconds;
    json["reason"] = sheet.made ? Json(nullptr) : Json(sheet.reason);
    json[parcelFaults[0]] = sheet.parcels.withoutNumber;
    json[parcelFaults[1]] = sheet.parcels.freeEnds;
    return json;
}

gdal::SheetReport SheetOf(const Json& json) {
    gdal::SheetReport sheet;
    sheet.made = json["made"];
    sheet.complete = json["complete"];
    sheet.lines = json["lines"];
    sheet.points = json["points"];
    sheet.texts = json["texts"];
    sheet.parcels = {json["parcels"], json[parcelFaults[0]], json[parcelFaults[1]]};
    sheet.seconds = json["seconds"];
    if (json["reason"].is_string()) sheet.reason = json["reason"];
    return sheet;
}

std::string Dumped(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json RowJson(const ReportRow& row, bool ofParcels) {
    Json json = {{"source", row.source}};
    json.update(SheetJson(row.sheet));
    if (ofParcels) return json;
    for (const char* name : parcelFaults) json.erase(name);
    return json;
}

// A field of a CSV file.
std::string Field(const Json& value) {
    if (value.is_null()) return "";
    if (!value.is_string()) return Dumped(value);
    const std::string text = value;
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) quoted.append(letter == '"' ? 2 : 1, letter);
    return quoted + "\"";
}

std::string CsvOf(const Json& list) {
    std::string text;
    for (const Json& json : list) {
        std::string titles;
        std::string line;
        for (const auto& [name, value] : json.items()) {
            titles += (titles.empty() ? "" : ",") + name;
            line += (line.empty() ? "" : ",") + Field(value);
        }
        if (text.empty()) text = titles + "\n";
        text += line + "\n";
    }
    return text;
}

bool IsJson(const std::string& file) {
    return file.ends_with(".json");
}

}  // namespace

std::string ResultText(const gdal::ConvertResult& result) {
    Json json = {{"outcome", static_cast<int>(result.outcome)}, {"problem", result.problem}};
    json["sheets"] = Json::array();
    for (const gdal::SheetReport& sheet : result.sheets) {
        json["sheets"].push_back(SheetJson(sheet));
        json["sheets"].back()["input"] = sheet.input;
    }
    return Dumped(json);
}

gdal::ConvertResult ResultOf(const std::string& text) {
    const Json json = Json::parse(text);
    gdal::ConvertResult result;
    result.outcome = static_cast<gdal::ConvertOutcome>(json["outcome"].get<int>());
    result.problem = json["problem"];
    for (const Json& entry : json["sheets"]) {
        result.sheets.push_back(SheetOf(entry));
        result.sheets.back().input = entry["input"];
    }
    return result;
}

void CheckReportName(const std::string& file) {
    if (!file.empty() && !IsJson(file) && !file.ends_with(".csv"))
        throw Failure(exitUsage,
                      "--report: " + client::SystemTextToUtf8(file) + ": a report is a .json or a .csv file");
}

void WriteReport(const std::string& file, const std::vector<ReportRow>& rows, bool ofParcels) {
    Json list = Json::array();
    for (const ReportRow& row : rows) list.push_back(RowJson(row, ofParcels));
    const std::string text = IsJson(file) ? Dumped(list, 2) + "\n" : CsvOf(list);
    try {
        client::AtomicOutput output(file);
        output.Write(text);
        output.Commit();
    } catch (const client::OutputError& error) {
        throw Failure(exitInternal, error.what());
    }
}

}  // namespace vemrado::tools
