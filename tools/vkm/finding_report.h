// Findings as people and programs read them, and their summary by rule.

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "client/text_encoding.h"
#include "feature_file.h"
#include "finding_page.h"
#include "json_writer.h"
#include "map/findings.h"
#include "standard_output.h"

namespace vemrado::tools {

struct FindingReportSettings {
    bool json = false;
    uint64_t most = 10;  // shown of each rule in a file
};

// Writes findings as they come, the first ones of each rule in a file, and counts all.
class FindingReport : public map::FindingSink {
  public:
    FindingReport(StandardOutput& standardOutput, const FindingReportSettings& settings);

    // The findings that follow are those of a file; its name is as people see it, in UTF-8.
    void BeginFile(const std::string& name, client::Encoding encoding);
    void Take(const map::Finding& finding) override;
    void WriteSummary();
    // All findings go there too, as points of a layer findings.
    void AddTo(FeatureFile& file);
    void AddTo(FindingPage& findingPage) { page = &findingPage; }

    uint64_t Count(map::Severity severity) const;

  private:
    void WriteText(const map::Finding& finding);
    void WriteJson(const map::Finding& finding);
    void WriteFeature(const map::Finding& finding);

    StandardOutput& output;
    JsonWriter json;
    FindingReportSettings settings;
    std::optional<client::TextDecoder> decoder;
    std::string file;
    std::string field;  // of the finding being written, in UTF-8
    uint64_t files = 0;
    FeatureFile* features = nullptr;
    FindingPage* page = nullptr;
    size_t featureLayer = 0;
    std::array<uint64_t, map::ruleCount> countsOfFile{};
    std::array<uint64_t, map::ruleCount> counts{};
};

}  // namespace vemrado::tools
