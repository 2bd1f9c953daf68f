#include "finding_report.h"

#include <algorithm>
#include <cmath>

#include "map/json_text.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

std::string Counted(uint64_t count, Message one, Message many) {
    return Filled(count == 1 ? one : many, {std::to_string(count)});
}

// The sentence of a finding as people read it.
std::string ShownMessage(const map::Finding& finding, std::string_view field) {
    return map::MessageOf(finding, field, HostTranslator());
}

std::string ShownSeverity(const map::RuleText& rule) {
    return TranslatedText(map::severityNames[static_cast<size_t>(rule.severity)]);
}

}  // namespace

FindingReport::FindingReport(StandardOutput& standardOutput, const FindingReportSettings& reportSettings)
    : output(standardOutput), json(standardOutput), settings(reportSettings) {}

void FindingReport::BeginFile(const std::string& name, client::Encoding encoding) {
    decoder.emplace(encoding);
    file = name;
    ++files;
    countsOfFile = {};
}

void FindingReport::Take(const map::Finding& finding) {
    const auto rule = static_cast<size_t>(finding.rule);
    ++counts[rule];
    const bool isShown = ++countsOfFile[rule] <= settings.most;
    if (!isShown && features == nullptr && page == nullptr) return;
    field.clear();
    decoder->Append(finding.field, field);
    if (features != nullptr) WriteFeature(finding);
    if (page != nullptr) page->Add(file, finding, ShownMessage(finding, field));
    if (!isShown) return;
    if (settings.json) {
        WriteJson(finding);
    } else {
        WriteText(finding);
    }
}

void FindingReport::WriteText(const map::Finding& finding) {
    const map::RuleText& rule = map::TextOf(finding.rule);
    const std::string place =
        ":" + std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column);
    std::string message = ShownMessage(finding, field);
    // A finding has one line, whatever its field holds.
    std::replace_if(
        message.begin(), message.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    output.Write(file + place + ": " + ShownSeverity(rule) + ": " + message + " [" + std::string(rule.name) +
                 "]\n");
}

void FindingReport::WriteJson(const map::Finding& finding) {
    const map::RuleText& rule = map::TextOf(finding.rule);
    json.Raw(R"({"rule":")");
    json.Raw(rule.name);
    json.Raw(R"(","severity":")");
    json.Raw(map::severityNames[static_cast<size_t>(rule.severity)]);
    json.Raw(R"(","file":)");
    json.String(file);
    json.Raw(R"(,"line":)" + std::to_string(finding.place.line));
    json.Raw(R"(,"column":)" + std::to_string(finding.place.column));
    json.Raw(R"(,"message":)");
    json.String(map::MessageOf(finding, field));
    if (!finding.field.empty()) {
        json.Raw(R"(,"field":)");
        json.String(field);
    }
    if (finding.point) {
        json.Raw(R"(,"point":[)");
        json.Real(finding.point->x);
        json.Raw(",");
        json.Real(finding.point->y);
        json.Raw("]");
    }
    json.Raw("}\n");
}

void FindingReport::AddTo(FeatureFile& featureFile) {
    constexpr StyledValue colours[] = {
        {"error", "200,30,30"}, {"warning", "240,150,20"}, {"note", "40,110,200"}};
    features = &featureFile;
    featureLayer = features->AddLayer("findings", false, "severity", colours);
}

void FindingReport::WriteFeature(const map::Finding& finding) {
    const map::RuleText& rule = map::TextOf(finding.rule);
    std::string members = "\"rule\":\"" + std::string(rule.name) + "\",\"severity\":\"" +
                          std::string(map::severityNames[static_cast<size_t>(rule.severity)]) +
                          "\",\"file\":";
    map::AppendJsonText(members, file);
    members += ",\"line\":" + std::to_string(finding.place.line) +
               ",\"column\":" + std::to_string(finding.place.column) + ",\"message\":";
    map::AppendJsonText(members, map::MessageOf(finding, field));
    members += ",\"field\":";
    map::AppendJsonText(members, field);
    const bool isPlace = finding.point && std::isfinite(finding.point->x) && std::isfinite(finding.point->y);
    features->Add(featureLayer, isPlace ? std::span(&*finding.point, 1) : std::span<const map::Point>(),
                  members);
}

uint64_t FindingReport::Count(map::Severity severity) const {
    uint64_t sum = 0;
    for (size_t rule = 0; rule < counts.size(); ++rule) {
        if (map::TextOf(static_cast<map::Rule>(rule)).severity == severity) sum += counts[rule];
    }
    return sum;
}

void FindingReport::WriteSummary() {
    if (settings.json) return;
    bool first = true;
    for (size_t rule = 0; rule < counts.size(); ++rule) {
        if (counts[rule] == 0) continue;
        const map::RuleText& text = map::TextOf(static_cast<map::Rule>(rule));
        constexpr size_t numberWidth = 10;
        constexpr size_t severityWidth = 9;
        const std::string row = (first ? "\n" : "") + PaddedLeft(std::to_string(counts[rule]), numberWidth) +
                                "  " + PaddedRight(ShownSeverity(text), severityWidth) +
                                std::string(text.name) + "\n";
        output.Write(row);
        first = false;
    }
    output.Write(Filled(files == 1 ? Message("{}, {}, {} in {} file") : Message("{}, {}, {} in {} files"),
                        {Counted(Count(map::Severity::error), "{} error", "{} errors"),
                         Counted(Count(map::Severity::warning), "{} warning", "{} warnings"),
                         Counted(Count(map::Severity::note), "{} note", "{} notes"), std::to_string(files)}) +
                 "\n");
}

}  // namespace vemrado::tools
